#include "host/session/cloudClasses.h"

#include "host/clouds/cloudInfo.h"
#include "host/clouds/openCloud.h"
#include "host/objects/standardClassNames.h"
#include "quindle/core/PointVocabulary.h"

#include <algorithm>

namespace Zamt::Host {

namespace {

/// The first point format for which the standard has the current table only.
constexpr unsigned firstNewFormat = 6;

} // namespace

CloudClasses classesOf(const PointCloud& cloud) {
  return {cloud.path(), cloud.pointFormat(), cloud.highestClass(), cloud.classNames()};
}

std::vector<CloudClasses> classesOfFiles(const std::vector<std::string>& files, const Stop& stop) {
  std::vector<CloudClasses> all;
  for (const std::string& file : files) {
    if (stop.requested()) break;
    std::string problem; // told when it is the file's turn
    if (const auto cloud = openCloud(file, problem)) all.push_back(classesOf(*cloud));
  }
  return all;
}

bool addClassUse(const PointCloud& cloud, const Stop& stop, ClassUse& use) {
  ClassCounts counts{};
  std::string problem;
  if (!countClasses(cloud, stop, counts, problem)) return false;
  for (std::size_t number = 0; number < counts.size(); ++number)
    if (counts[number] != 0 && use[number].empty()) use[number] = cloud.path();
  return true;
}

bool addClassUse(const std::vector<std::string>& files, const Stop& stop, ClassUse& use) {
  for (const std::string& file : files) {
    std::string problem;
    if (const auto cloud = openCloud(file, problem)) addClassUse(*cloud, stop, use);
    if (stop.requested()) return false;
  }
  return true;
}

std::string nameOfClass(const CloudClasses& cloud, std::uint8_t number) {
  const auto own = std::ranges::find(cloud.names, number, &ClassName::number);
  if (own != cloud.names.end()) return own->name;
  const std::vector<std::string> names = standardClassNames(number);
  if (names.empty() || std::ranges::find(cloud.names, names[0], &ClassName::name) != cloud.names.end())
    return {};
  const auto& current = standardQuindleClasses();
  const bool isCurrent = std::ranges::find(current, names[0], &QuindleClass::name) != current.end();
  return isCurrent || cloud.pointFormat < firstNewFormat ? names[0] : std::string();
}

std::string nameOfClass(const PointCloud& cloud, const LabelSet& labels, std::uint8_t number) {
  const auto label = labels.labels.find(number);
  if (label != labels.labels.end() && !label->second.name.empty()) return label->second.name;
  std::string name = nameOfClass(classesOf(cloud), number);
  const bool isOther = std::ranges::any_of(
      labels.labels, [&](const auto& other) { return other.first != number && other.second.name == name; });
  return isOther ? std::string() : name;
}

} // namespace Zamt::Host
