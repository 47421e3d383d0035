#pragma once

#include "host/objects/Grid.h"

namespace Zamt::Host {

/// Makes all objects of the headless host known to the graph. Called again, objects that are made from then
/// on get the new surroundings.
void registerHostObjects(const Surroundings& surroundings);

} // namespace Zamt::Host
