#pragma once

namespace Zamt::Host {

/// Makes all objects of the headless host known to the graph. Calling it again changes nothing.
void registerHostObjects();

} // namespace Zamt::Host
