#pragma once

#include "host/filters/PointFilter.h"

#include <array>
#include <memory>
#include <string>

namespace Zamt::Host {

/// Keeps the points whose distance from `centre` is at most `radius`, all in world units. Null, with a
/// sentence in `problem`, when a coordinate is not a number or the radius not one of at least 0.
std::shared_ptr<const PointFilter> makeSphereFilter(const std::array<double, 3>& centre, double radius,
                                                    std::string& problem);

} // namespace Zamt::Host
