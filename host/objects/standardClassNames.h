#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace Zamt::Host {

/// What the standard calls that class: the name of its current table first, then those of older ones; empty
/// for a number that it never named.
std::vector<std::string> standardClassNames(std::int32_t number);

/// Whether that is one of them.
bool isStandardClass(std::int32_t number, const std::string& name);

} // namespace Zamt::Host
