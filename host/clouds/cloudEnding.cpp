#include "host/clouds/cloudEnding.h"

#include <algorithm>

namespace Zamt::Host {

std::string_view cloudEnding(const std::string& path) {
  const auto isSame = [](char a, char b) { return (a >= 'A' && a <= 'Z' ? a - 'A' + 'a' : a) == b; };
  for (const std::string_view ending : {copcEnding, lazEnding, lasEnding})
    if (path.size() >= ending.size() && std::equal(path.end() - static_cast<std::ptrdiff_t>(ending.size()),
                                                   path.end(), ending.begin(), isSame))
      return ending;
  return {};
}

} // namespace Zamt::Host
