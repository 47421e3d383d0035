#pragma once

#include <cstdint>

/// The memory of this test program, which can be made to run out.
namespace Zamt::Testing::FailingMemory {

/// Which allocations fail: none, one, or all from one on.
enum class Which { None, Only, FromThere };

/// Counts allocations from 0 on and lets the one of this number fail, or all from it on.
void begin(Which which, std::uint64_t at);

/// Everything succeeds again. Returns how many allocations there were between `begin` and the first `end`.
std::uint64_t end();

/// How many blocks are in use.
std::int64_t inUse();

} // namespace Zamt::Testing::FailingMemory
