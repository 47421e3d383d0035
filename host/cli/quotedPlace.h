#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace Zamt::Host {

/// The line of a text that a diagnostic is about, and a caret under its place there: two lines with their
/// ends. Empty where the text has no such line. Lines and columns count from 1, columns in bytes; with column
/// 0 there is no caret.
std::string quotedPlace(std::string_view text, std::int32_t line, std::int32_t column);

} // namespace Zamt::Host
