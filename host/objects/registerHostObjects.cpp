#include "host/objects/registerHostObjects.h"

#include "host/objects/BrushFilters.h"
#include "host/objects/Brushes.h"
#include "host/objects/CloudObjects.h"
#include "host/objects/MaskedLabels.h"
#include "host/objects/PictureDisplay.h"

#include "sorbine/VCreator.h"

#include <string>

namespace Zamt::Host {

namespace {

/// The graph outlives scenes, and its creators are known only once.
void forget(const std::string& creator) {
  if (const auto known = VManagedObject::find<VCreatorBase>(creator)) known->remove();
}

} // namespace

void registerHostObjects(const Surroundings& surroundings) {
  // These two hold the surroundings of the scene that they were registered for.
  forget("Lattix/PointCloud");
  forget("Display/Picture");
  registerCloudObjects(surroundings);
  registerBrushes();
  registerBrushFilters();
  registerMaskedLabels();
  registerPictureDisplay(surroundings);
}

} // namespace Zamt::Host
