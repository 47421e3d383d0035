#include "host/objects/Grid.h"

#include "host/clouds/StandardClasses.h"

#include <algorithm>
#include <set>

namespace Zamt::Host {

namespace {

constexpr std::array<float, 4> plainColour{0.5F, 0.5F, 0.5F, 1.0F};

void addLabel(LabelSet& set, const ClassName& named) {
  Label& label = set.labels[named.number];
  label.value = named.number;
  label.color = plainColour;
  label.name = named.name;
}

/// The names of the file's lookup record, and the standard ones for the numbers that it leaves open: a record
/// may name just the classes that somebody added.
LabelSet labelsOf(const PointCloud& cloud) {
  LabelSet labels;
  std::set<std::string> taken;
  for (const ClassName& named : cloud.classNames()) {
    addLabel(labels, named);
    taken.insert(named.name);
  }
  for (const ClassName& named : standardClasses(cloud.pointFormat()))
    if (!labels.labels.contains(named.number) && !taken.contains(named.name)) addLabel(labels, named);
  return labels;
}

} // namespace

bool Grid::warnOfFarPlaces(const std::vector<SelectionStep>& steps, std::string& problem) {
  std::vector<std::string> found;
  if (!findFarPlaces(*cloud, steps, stop, found, problem)) return false;
  for (std::string& sentence : found)
    if (std::find(warnings.begin(), warnings.end(), sentence) == warnings.end())
      warnings.push_back(std::move(sentence));
  return true;
}

Rethold::StrongPtr<Grid> openGrid(const std::string& path, const Surroundings& surroundings,
                                  std::string& problem) {
  std::shared_ptr<PointCloud> cloud = openCloud(path, problem, surroundings.formats);
  if (!cloud) return nullptr;
  LabelSet labels = labelsOf(*cloud);
  return std::make_shared<Grid>(Grid{std::move(cloud), surroundings.stop, std::move(labels), {}, {}, {}, {}});
}

} // namespace Zamt::Host
