#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

namespace Zamt::Host {

/// The name of one class, as a file gives it.
struct ClassName {
  std::uint8_t number = 0;
  std::string name;
};

/// Bytes of a class name that a file can hold, inclusive: what the lookup record of LAS has room for.
inline constexpr std::size_t longestClassName = 15;

} // namespace Zamt::Host
