#pragma once

#include "host/filters/PointFilter.h"
#include "host/surfaces/HeightModel.h"

#include <memory>
#include <string>

namespace Zamt::Host {

/// Points this near to the surface, in world units, lie on it: neither above nor below. The coordinates of
/// points and surface are rounded to at most that, so a smaller distance says nothing.
inline constexpr double onSurfaceDistance = 1e-6;

/// A filter for the points more than `margin` (world units) above the surface, or below it. Points where it
/// has no height never match. `surface` is not null. Null, with a sentence in `problem`, when the margin
/// can't be used.
std::shared_ptr<const PointFilter> makeSurfaceFilter(std::shared_ptr<const HeightModel> surface, bool above,
                                                     double margin, std::string& problem);

} // namespace Zamt::Host
