#pragma once

#include <functional>
#include <string>

namespace Zamt {

/// What `textOf`, a function or a member, gives of each item, one behind the other with ", " between.
template <class List, class TextOf>
std::string commaList(const List& list, const TextOf& textOf) {
  std::string out;
  bool isFirst = true;
  for (const auto& item : list) {
    if (!isFirst) out += ", ";
    isFirst = false;
    out += std::invoke(textOf, item);
  }
  return out;
}

} // namespace Zamt
