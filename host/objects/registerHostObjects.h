#pragma once

#include "host/objects/Grid.h"

namespace Zamt::Host {

/// Makes all objects of the headless host known to the graph. Calling it again changes nothing.
void registerHostObjects(const Surroundings& surroundings);

} // namespace Zamt::Host
