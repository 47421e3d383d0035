#pragma once

#include <string>
#include <string_view>

namespace Zamt::Host {

inline constexpr std::string_view lasEnding = ".las";
inline constexpr std::string_view lazEnding = ".laz";
inline constexpr std::string_view copcEnding = ".copc.laz";

/// Which of these a name ends in, the longest; empty if in none. Case does not matter.
std::string_view cloudEnding(const std::string& path);

} // namespace Zamt::Host
