#include "host/objects/Grid.h"

#include "host/points/StandardClasses.h"

namespace Zamt::Host {

namespace {

constexpr std::array<float, 4> plainColour{0.5F, 0.5F, 0.5F, 1.0F};

void addLabel(LabelSet& set, const ClassName& named) {
  Label& label = set.labels[named.number];
  label.value = named.number;
  label.color = plainColour;
  label.name = named.name;
}

} // namespace

Rethold::StrongPtr<Grid> openGrid(const std::string& path, std::string& problem) {
  std::shared_ptr<PointCloud> cloud = PointCloud::open(path, problem);
  if (!cloud) return nullptr;
  auto grid = std::make_shared<Grid>();
  grid->ownLabels = !cloud->classNames().empty();
  if (grid->ownLabels)
    for (const ClassName& named : cloud->classNames()) addLabel(grid->labels, named);
  else
    for (const ClassName& named : standardClasses(cloud->pointFormat())) addLabel(grid->labels, named);
  grid->cloud = std::move(cloud);
  return grid;
}

} // namespace Zamt::Host
