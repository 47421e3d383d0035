#include "host/objects/standardClassNames.h"

#include "quindle/core/PointVocabulary.h"

#include <algorithm>

namespace Zamt::Host {

std::vector<std::string> standardClassNames(std::int32_t number) {
  std::vector<std::string> names;
  for (const auto* const table : {&standardQuindleClasses(), &olderQuindleClasses()})
    for (const QuindleClass& known : *table)
      if (known.number == number) names.push_back(known.name);
  return names;
}

bool isStandardClass(std::int32_t number, const std::string& name) {
  const std::vector<std::string> names = standardClassNames(number);
  return std::ranges::find(names, name) != names.end();
}

} // namespace Zamt::Host
