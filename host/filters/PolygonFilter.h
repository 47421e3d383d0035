#pragma once

#include "host/filters/PointFilter.h"
#include "host/regions/Region.h"

#include <memory>
#include <span>
#include <string>

namespace Zamt::Host {

/// Keeps the points that lie, seen from above, inside any of the polygons or exactly on one of their lines.
/// Coordinates are finite and in world units. The filter copies the polygons. Null, with a sentence in
/// `problem`, when there is no polygon,
/// or too many of their lines lie side by side.
std::shared_ptr<const PointFilter> makePolygonFilter(std::span<const Polygon> polygons, std::string& problem);

/// A box around a region: its own, or one around its polygons over all heights. Empty if there is nothing.
Bounds boundsOf(const Region& region);

/// The filter for a region: that of its polygons, or of its box.
std::shared_ptr<const PointFilter> makeRegionFilter(const Region& region, std::string& problem);

} // namespace Zamt::Host
