#pragma once

#include <string>
#include <string_view>

/// Letters, digits, case and white space of ASCII, the same in every locale. Other bytes are none of these,
/// and are left as they are.
namespace Zamt {

inline constexpr std::string_view whiteSpace = " \t\n\v\f\r";

constexpr bool isDigit(char c) { return c >= '0' && c <= '9'; }

constexpr bool isLetter(char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); }

/// Whether a name may hold it: a letter, a digit or "_".
constexpr bool isNameByte(char c) { return isLetter(c) || isDigit(c) || c == '_'; }

constexpr char lowered(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }

constexpr char uppered(char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c; }

inline std::string lowered(std::string_view text) {
  std::string out(text);
  for (char& c : out) c = lowered(c);
  return out;
}

constexpr std::string_view trimmed(std::string_view text) {
  const std::size_t first = text.find_first_not_of(whiteSpace);
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(whiteSpace) - first + 1);
}

} // namespace Zamt
