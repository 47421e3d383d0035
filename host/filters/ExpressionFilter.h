#pragma once

#include "host/filters/PointFilter.h"

#include <memory>
#include <string>

namespace Zamt::Host {

/// A filter for the points at which the expression is neither 0 nor NaN; see Expression for the language. The
/// names are the cloud's fields, exactly as spelled, and x, y and z for the coordinates in world units. Null,
/// with a sentence in `problem`, when the text has a fault. `cloud` must outlive the filter.
std::shared_ptr<const PointFilter> makeExpressionFilter(const PointCloud& cloud, const std::string& text,
                                                        std::string& problem);

} // namespace Zamt::Host
