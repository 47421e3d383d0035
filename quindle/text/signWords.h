#pragma once

#include <array>
#include <string_view>

namespace Zamt {

/// A sign that other languages have for something, and how it is said here.
struct SignWord {
  std::string_view sign;
  std::string_view word;
};

/// A sign stands before those that it begins with.
inline constexpr std::array<SignWord, 8> signWords{{
    {"&&", "and"},
    {"||", "or"},
    {"&", "and"},
    {"|", "or"},
    {"=>", ">="},
    {"=<", "<="},
    {"=", "=="},
    {"!", "not"},
}};

/// The sign that `text` begins with, or null. A sign of the language, as "==" or "!=", is none of them.
constexpr const SignWord* findSignWord(std::string_view text) {
  if (text.starts_with("==") || text.starts_with("!=")) return nullptr;
  for (const SignWord& entry : signWords)
    if (text.starts_with(entry.sign)) return &entry;
  return nullptr;
}

} // namespace Zamt
