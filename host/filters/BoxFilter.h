#pragma once

#include "host/filters/PointFilter.h"

#include <memory>
#include <string>

namespace Zamt::Host {

/// Keeps the points inside a box in world units, its faces included. An end may be infinite. Null, with a
/// sentence in `problem`, when an end is not a number.
std::shared_ptr<const PointFilter> makeBoxFilter(const Bounds& box, std::string& problem);

} // namespace Zamt::Host
