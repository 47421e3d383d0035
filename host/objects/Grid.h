#pragma once

#include "files/Stop.h"
#include "host/clouds/PointMask.h"
#include "host/clouds/openCloud.h"
#include "host/filters/Selection.h"
#include "host/objects/ActionFiles.h"

#include "cadmer/LabelSet.h"
#include "rethold/Pointer.h"
#include "sorbine/VValue.h"

#include <map>
#include <memory>
#include <string>
#include <vector>

namespace Zamt {
class VObject;
}

namespace Zamt::Host {

/// One point cloud as the objects of the graph see it: the points, the classes that the data brings, and the
/// masks that editors wrote. Shared by everything that reads the cloud.
struct Grid {
  std::shared_ptr<PointCloud> cloud;

  /// Ends what is done with the cloud, when it is raised.
  const Stop& stop;

  /// The classes that there are, which whoever opened the cloud puts here.
  LabelSet labels;

  /// What editors selected, by the name of the field that holds it.
  std::map<std::string, PointMask> masks;

  /// The brush that stands for every point of the cloud where no other is attached; null for really all.
  Rethold::WeakPtr<VObject> everything;

  /// Classes that points were put into and that neither the file nor the standard has that name for.
  std::map<std::uint8_t, std::string> addedClasses;

  /// What is doubtful in what was asked of this cloud, in sentences, each once.
  std::vector<std::string> warnings;

  /// Adds what `findFarPlaces` says of a selection that was worked out. False with a sentence in `problem`.
  bool warnOfFarPlaces(const std::vector<SelectionStep>& steps, std::string& problem);
};

/// What objects of the graph are given by whoever makes the scene, and which outlives it.
struct Surroundings {
  const Stop& stop;
  CloudFormats formats = cloudFormats();                                ///< In which clouds are read.
  std::shared_ptr<ActionFiles> files = std::make_shared<ActionFiles>(); ///< Never null.
};

/// Opens the cloud at `path`. Null when it can't be used, with a sentence in `problem`.
Rethold::StrongPtr<Grid> openGrid(const std::string& path, const Surroundings& surroundings,
                                  std::string& problem);

/// One field of a cloud, which may not be there.
struct FieldHandle {
  Rethold::StrongPtr<Grid> grid;
  std::string name;
};

/// What a brush publishes. Which points it keeps is worked out from the object that publishes it and the
/// objects in front of that one, once a cloud is at hand.
struct Brush {};

} // namespace Zamt::Host
