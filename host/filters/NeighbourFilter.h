#pragma once

#include "host/filters/PointFilter.h"

#include <memory>
#include <string>

namespace Zamt::Host {

/// This many neighbours, or more, stand for no limit.
inline constexpr double unlimitedNeighbours = 1e9;

/// Keeps the points that have from `minimum` to `maximum`, both included, other points of the whole cloud
/// within `radius`. A point at exactly that distance counts, in three dimensions and world units, and so does
/// one at the same place. The filter refers to the cloud, which must outlive it. Null, with a sentence in
/// `problem`, when the radius is not a number of at least 0 or a limit is not a number.
std::shared_ptr<const CloudFilter> makeNeighbourFilter(const PointCloud& cloud, double radius, double minimum,
                                                       double maximum, std::string& problem);

} // namespace Zamt::Host
