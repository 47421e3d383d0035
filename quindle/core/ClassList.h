#pragma once

#include <algorithm>
#include <string_view>
#include <vector>

namespace Zamt {

/// The classes in a list as conditions have it: the pieces between commas, without the blanks around them and
/// without empty ones. They point into `list`.
inline std::vector<std::string_view> classesIn(std::string_view list) {
  std::vector<std::string_view> classes;
  while (!list.empty()) {
    const std::size_t comma = std::min(list.find(','), list.size());
    const std::string_view piece = list.substr(0, comma);
    list.remove_prefix(std::min(comma + 1, list.size()));
    const std::size_t first = piece.find_first_not_of(' ');
    if (first == std::string_view::npos) continue;
    classes.push_back(piece.substr(first, piece.find_last_not_of(' ') - first + 1));
  }
  return classes;
}

} // namespace Zamt
