#pragma once

namespace Zamt::Host {

/// Registers the objects that a selection starts from: what was drawn on the screen, a box and a polygon.
void registerBrushes();

} // namespace Zamt::Host
