#pragma once

#include "quindle/text/QuindleSpans.h"

#include <string>
#include <string_view>

namespace Zamt::Testing {

inline bool isWhiteSpace(std::string_view gap) {
  return gap.find_first_not_of(" \t\r\n") == std::string_view::npos;
}

/// What is wrong with the spans of a text as such, whatever it says: they hold their order, their offsets
/// agree with their lines and columns, and what they leave out is white space. Empty if nothing is.
inline std::string spanFault(const std::string& text) {
  const std::string_view all = text;
  std::uint64_t behind = 0; // the last span that is neither around others nor in one
  std::int32_t line = 1;
  std::uint64_t lineStart = 0;
  std::uint64_t at = 0;
  for (const QuindleSpan& span : quindleSpans(text)) {
    const std::string place = " at " + std::to_string(span.offset);
    if (span.offset < at) return "out of order" + place;
    for (; at < span.offset; ++at) {
      if (text.at(at) != '\n') continue;
      ++line;
      lineStart = at + 1;
    }
    if (span.line != line || span.column != static_cast<std::int32_t>(at - lineStart) + 1)
      return "in another place" + place;
    const std::uint64_t end = span.offset + span.length;
    if (end > text.size()) return "beyond the end" + place;
    if (span.role == QuindleSpan::Role::Placeholder) {
      if (end > behind) return "beyond its text" + place;
      continue;
    }
    if (span.length == 0) return "empty" + place;
    if (span.offset < behind) return "overlapping" + place;
    if (!isWhiteSpace(all.substr(behind, span.offset - behind))) return "something missing" + place;
    if (span.role != QuindleSpan::Role::Argument) behind = end;
  }
  return isWhiteSpace(all.substr(behind)) ? "" : "something missing at the end";
}

} // namespace Zamt::Testing
