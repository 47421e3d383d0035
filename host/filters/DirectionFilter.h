#pragma once

#include "host/filters/PointFilter.h"

#include <memory>
#include <string>
#include <string_view>

namespace Zamt::Host {

/// Keeps the points whose normal lies within `tolerance` degrees, inclusive, of the horizontal plane, as the
/// normal of a wall does. The normal is the field `fieldName` of three components, or the three fields of
/// that name followed by X, Y and Z; its length and its sign do not matter. A normal of length zero, and one
/// that is not a number, is never kept. The filter refers to the cloud, which must outlive it. Null, with a
/// sentence in `problem`, when there is no such normal or the tolerance is not a number of at least 0.
std::shared_ptr<const PointFilter> makeDirectionFilter(const PointCloud& cloud, std::string_view fieldName,
                                                       double tolerance, std::string& problem);

} // namespace Zamt::Host
