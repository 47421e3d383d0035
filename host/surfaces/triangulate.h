#pragma once

#include "files/Stop.h"

#include <array>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

namespace Zamt::Host {

/// A point on a lattice in plan.
struct LatticePoint {
  std::int64_t x = 0; ///< In steps of the lattice, the same in x and in y.
  std::int64_t y = 0;
  double z = 0;
};

/// Points may lie this many steps apart in x and in y; the exact sums about them then fit 128 bits.
inline constexpr std::int64_t widestLattice = std::int64_t{1} << 30;

/// The Delaunay triangulation in plan of points: no point lies inside the circle around a triangle. Of points
/// on one circle the one with the lowest x, then y is joined to all others, and of points with equal x and y
/// only the lowest counts, so that the triangles do not depend on the order of the points. Corners are
/// positions in `points`, counterclockwise. Points that all lie on one line have no triangles. False, with a
/// sentence in `problem`, when the points are more than 2^30 or lie too far apart, or the work was stopped.
bool triangulate(std::span<const LatticePoint> points, const Stop& stop,
                 std::vector<std::array<std::uint32_t, 3>>& triangles, std::string& problem);

} // namespace Zamt::Host
