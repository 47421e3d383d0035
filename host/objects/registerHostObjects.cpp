#include "host/objects/registerHostObjects.h"

#include "host/objects/BrushFilters.h"
#include "host/objects/Brushes.h"
#include "host/objects/CloudObjects.h"
#include "host/objects/MaskedLabels.h"
#include "host/objects/PictureDisplay.h"

namespace Zamt::Host {

void registerHostObjects(const Surroundings& surroundings) {
  registerCloudObjects(surroundings);
  registerBrushes();
  registerBrushFilters();
  registerMaskedLabels();
  registerPictureDisplay(surroundings);
}

} // namespace Zamt::Host
