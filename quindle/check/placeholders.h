#pragma once

#include <string_view>
#include <vector>

namespace Zamt {

/// The words in the braces of a report line, exactly as they stand, in their order. They point into `line`.
inline std::vector<std::string_view> placeholders(std::string_view line) {
  std::vector<std::string_view> words;
  for (;;) {
    const std::size_t open = line.find('{');
    const std::size_t close = open == std::string_view::npos ? open : line.find('}', open);
    if (close == std::string_view::npos) return words;
    words.push_back(line.substr(open + 1, close - open - 1));
    line.remove_prefix(close + 1);
  }
}

} // namespace Zamt
