#include "host/clouds/StandardClasses.h"

#include <algorithm>
#include <array>

namespace Zamt::Host {

namespace {

struct StandardClass {
  std::uint8_t number;
  const char* name;
};

// ASPRS LAS 1.4 R15, tables "ASPRS Standard LIDAR Point Classes": one for the formats 0 to 5, one for 6
// to 10, which have these in common.
constexpr std::array commonClasses{
    StandardClass{0, "Created, Never Classified"},
    StandardClass{1, "Unclassified"},
    StandardClass{2, "Ground"},
    StandardClass{3, "Low Vegetation"},
    StandardClass{4, "Medium Vegetation"},
    StandardClass{5, "High Vegetation"},
    StandardClass{6, "Building"},
    StandardClass{9, "Water"},
};
constexpr std::array oldClasses{
    StandardClass{7, "Low Point"},
    StandardClass{8, "Model Key-point"},
    StandardClass{12, "Overlap"},
};
constexpr std::array newClasses{
    StandardClass{7, "Low Noise"},
    StandardClass{10, "Rail"},
    StandardClass{11, "Road Surface"},
    StandardClass{13, "Wire - Guard"},
    StandardClass{14, "Wire - Conductor"},
    StandardClass{15, "Transmission Tower"},
    StandardClass{16, "Wire-structure Connector"},
    StandardClass{17, "Bridge Deck"},
    StandardClass{18, "High Noise"},
    StandardClass{19, "Overhead Structure"},
    StandardClass{20, "Ignored Ground"},
    StandardClass{21, "Snow"},
    StandardClass{22, "Temporal Exclusion"},
};

} // namespace

std::vector<ClassName> standardClasses(unsigned pointFormat) {
  std::vector<ClassName> result;
  const auto add = [&](const StandardClass& standard) { result.push_back({standard.number, standard.name}); };
  std::ranges::for_each(commonClasses, add);
  if (pointFormat >= 6)
    std::ranges::for_each(newClasses, add);
  else
    std::ranges::for_each(oldClasses, add);
  std::ranges::sort(result, {}, &ClassName::number);
  return result;
}

std::string nameOfClass(const PointCloud& cloud, std::uint8_t number) {
  for (const std::vector<ClassName>& names : {cloud.classNames(), standardClasses(cloud.pointFormat())}) {
    const auto found = std::ranges::find(names, number, &ClassName::number);
    if (found != names.end()) return found->name;
  }
  return {};
}

} // namespace Zamt::Host
