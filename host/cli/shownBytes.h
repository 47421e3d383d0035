#pragma once

#include <string>
#include <string_view>

namespace Zamt::Host {

/// The text with every byte that belongs to no character of UTF-8 spelled out, as in "\xC3": a diagnostic may
/// quote any piece of a file, and is to be read all the same.
std::string shownBytes(std::string_view text);

} // namespace Zamt::Host
