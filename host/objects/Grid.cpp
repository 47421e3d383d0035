#include "host/objects/Grid.h"

#include <algorithm>
#include <utility>

namespace Zamt::Host {

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
  return std::make_shared<Grid>(Grid{std::move(cloud), surroundings.stop, {}, {}, {}, {}, {}});
}

} // namespace Zamt::Host
