#include "host/session/classNames.h"

#include <fmt/format.h>

namespace Zamt::Host {

std::string storedClassName(const std::string& name) {
  if (name.size() <= longestClassName) return name;
  std::size_t length = longestClassName;
  constexpr unsigned char continuationMask = 0xC0;
  constexpr unsigned char continuation = 0x80;
  while (length > 0 && (static_cast<unsigned char>(name[length]) & continuationMask) == continuation)
    --length;
  return name.substr(0, length);
}

bool storableClassNames(const Grid& grid, std::vector<ClassName>& names, std::vector<std::string>& shortened,
                        std::string& problem) {
  for (const auto& [number, whole] : grid.addedClasses) {
    const std::string stored = storedClassName(whole);
    for (const auto& [other, label] : grid.labels.labels) {
      if (other == number || storedClassName(label.name) != stored) continue;
      problem =
          fmt::format("The classes \"{}\" and \"{}\" begin alike, and a LAS file holds only the first {} "
                      "bytes of a name. Give one of them a name that differs in those.",
                      whole, label.name, longestClassName);
      return false;
    }
    if (stored != whole)
      shortened.push_back(
          fmt::format("The class \"{}\" is stored as \"{}\": a LAS file holds {} bytes of a name. "
                      "Quindles find it by its whole name all the same.",
                      whole, stored, longestClassName));
    names.push_back({number, stored});
  }
  return true;
}

} // namespace Zamt::Host
