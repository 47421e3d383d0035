#include "files/temporaryName.h"

#include <array>
#include <cstdint>
#include <cstdio>

namespace Zamt {

std::string temporaryName(const std::string& key, unsigned attempt, const char* ending) {
  std::uint64_t hash = 0xcbf29ce484222325; // FNV-1a
  for (const char c : key) hash = (hash ^ static_cast<unsigned char>(c)) * 0x100000001b3;
  std::array<char, 64> name{};
  std::snprintf(name.data(), name.size(), ".quindle-%016llx-%u%s", static_cast<unsigned long long>(hash),
                attempt, ending);
  return name.data();
}

} // namespace Zamt
