#pragma once

namespace Zamt::Host {

/// Registers the objects that carry out the nine conditions, and the one that joins two brushes.
void registerBrushFilters();

} // namespace Zamt::Host
