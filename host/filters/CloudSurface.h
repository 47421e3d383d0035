#pragma once

#include "files/Stop.h"
#include "host/clouds/PointCloud.h"
#include "host/surfaces/Surface.h"

#include <cstdint>
#include <memory>
#include <span>
#include <string>

namespace Zamt::Host {

/// The Delaunay triangulation in plan of the points that are in one of `classes` now, as changed in memory;
/// of points above one another the lowest counts. Triangles with a side longer in plan than `longest`, in
/// world units, are left out. Takes about 150 bytes for each of those points while it works, and 200 from
/// then on. Null, with a sentence in `problem`, when there is no triangle, the cloud can't be read, or the
/// work was stopped.
std::shared_ptr<const Surface> makeCloudSurface(const PointCloud& cloud,
                                                std::span<const std::int64_t> classes, double longest,
                                                const Stop& stop, std::string& problem);

} // namespace Zamt::Host
