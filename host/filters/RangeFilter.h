#pragma once

#include "host/filters/PointFilter.h"

#include <memory>
#include <string>
#include <string_view>

namespace Zamt::Host {

/// A limit this far out, or further, stands for no limit on that side.
inline constexpr double unlimitedValue = 1e300;

/// Keeps the points whose value in a field lies in [`minimum`, `maximum`], both ends included, in the units
/// of the field. A point without a value there (NaN) is never kept. `component` counts from 0. The filter
/// refers to the cloud, which must outlive it. Null, with a sentence in `problem`, when there is no such
/// field or component, or when a limit is not a number.
std::shared_ptr<const PointFilter> makeRangeFilter(const PointCloud& cloud, std::string_view fieldName,
                                                   double component, double minimum, double maximum,
                                                   std::string& problem);

} // namespace Zamt::Host
