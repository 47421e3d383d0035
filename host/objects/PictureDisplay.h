#pragma once

#include "host/objects/Grid.h"

namespace Zamt::Host {

/// Registers the display that draws a cloud into a PNG file.
void registerPictureDisplay(const Surroundings& surroundings);

} // namespace Zamt::Host
