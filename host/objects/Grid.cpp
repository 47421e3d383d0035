#include "host/objects/Grid.h"

namespace Zamt::Host {

Rethold::StrongPtr<Grid> openGrid(const std::string& path, const Surroundings& surroundings,
                                  std::string& problem) {
  std::shared_ptr<PointCloud> cloud = openCloud(path, problem, surroundings.formats);
  if (!cloud) return nullptr;
  return std::make_shared<Grid>(Grid{std::move(cloud), surroundings.stop, {}, {}, {}, {}});
}

} // namespace Zamt::Host
