#include "host/filters/CloudSurface.h"

#include "host/clouds/forEachBlock.h"
#include "host/filters/FieldLookup.h"
#include "host/surfaces/triangulate.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <oneapi/tbb/enumerable_thread_specific.h>
#include <vector>

namespace Zamt::Host {

namespace {

using Points = std::vector<LatticePoint>;

/// One coordinate of the cloud as whole steps of the lattice.
struct Axis {
  double step = 1; ///< World units.
  double origin = 0;
  std::int64_t perStep = 1; ///< Steps of the lattice in one of the file's.

  std::int64_t onLattice(double value) const { return std::llround((value - origin) / step) * perStep; }
  double inWorld(std::int64_t place) const {
    const std::int64_t stored = place / perStep; // a multiple, as `onLattice` made it
    return static_cast<double>(stored) * step + origin;
  }
};

using Axes = std::array<Axis, 2>;

/// How many times one step goes into another; 0 if it does not.
std::int64_t timesIn(double small, double large) {
  constexpr double mostTimes = 10000;
  const double times = large / small;
  const double whole = std::round(times);
  return whole <= mostTimes && std::abs(times - whole) <= whole * 1e-9 ? static_cast<std::int64_t>(whole) : 0;
}

/// Finds the lattice that the stored x and y both lie on.
bool makeAxes(const PointCloud& cloud, Axes& axes, std::string& problem) {
  for (std::size_t i = 0; i < 2; ++i)
    axes[i] = {std::abs(cloud.fields()[i].scale[0]), cloud.fields()[i].origin[0], 1};
  axes[0].perStep = std::max<std::int64_t>(1, timesIn(axes[1].step, axes[0].step));
  axes[1].perStep = std::max<std::int64_t>(1, timesIn(axes[0].step, axes[1].step));
  if (timesIn(axes[1].step, axes[0].step) != 0 || timesIn(axes[0].step, axes[1].step) != 0) return true;
  problem = "The points of \"" + cloud.path() +
            "\" can't be triangulated: x and y are stored in steps of which none is a multiple of the other. "
            "Store both with the same scale.";
  return false;
}

/// Which classes are wanted, by number.
using Wanted = std::array<bool, 256>;

Wanted wantedOf(std::span<const std::int64_t> classes) {
  Wanted wanted{};
  for (const std::int64_t number : classes)
    if (number >= 0 && number < static_cast<std::int64_t>(wanted.size()))
      wanted[static_cast<std::size_t>(number)] = true;
  return wanted;
}

/// Adds the points of a block that are in wanted classes.
void addPoints(BlockReader& block, const Wanted& wanted, const Axes& axes, Points& points) {
  const Column classes = block.classes();
  std::vector<std::uint32_t> indices;
  for (std::uint32_t i = 0; i < block.size(); ++i)
    if (wanted[classes.byteAt(i)]) indices.push_back(i);
  if (indices.empty()) return;
  std::array<std::vector<double>, 3> values;
  for (std::size_t axis = 0; axis < values.size(); ++axis) {
    values[axis].resize(indices.size());
    block.axis(axis).gather(indices, values[axis]);
  }
  for (std::size_t i = 0; i < indices.size(); ++i)
    points.push_back({axes[0].onLattice(values[0][i]), axes[1].onLattice(values[1][i]), values[2][i]});
}

bool collectPoints(const PointCloud& cloud, const Wanted& wanted, const Axes& axes, const Stop& stop,
                   Points& points, std::string& problem) {
  std::vector<ColumnKey> columns(axisColumns.begin(), axisColumns.end());
  columns.push_back(cloud.keyOf(cloud.classField()));
  tbb::enumerable_thread_specific<Points> found;
  const auto visit = [&](BlockReader& block) { addPoints(block, wanted, axes, found.local()); };
  if (!forEachBlock(cloud, columns, stop, visit, problem)) return false;
  for (const Points& some : found) points.insert(points.end(), some.begin(), some.end());
  return true;
}

bool isShort(const Mesh& mesh, const std::array<std::uint32_t, 3>& triangle, double longest) {
  for (std::size_t i = 0; i < triangle.size(); ++i) {
    const auto& from = mesh.vertices[triangle[i]];
    const auto& to = mesh.vertices[triangle[(i + 1) % triangle.size()]];
    if (std::hypot(to[0] - from[0], to[1] - from[1]) > longest) return false;
  }
  return true;
}

} // namespace

std::shared_ptr<const Surface> makeCloudSurface(const PointCloud& cloud,
                                                std::span<const std::int64_t> classes, double longest,
                                                const Stop& stop, std::string& problem) {
  Axes axes;
  Points points;
  Mesh mesh;
  if (!makeAxes(cloud, axes, problem) ||
      !collectPoints(cloud, wantedOf(classes), axes, stop, points, problem) ||
      !triangulate(points, stop, mesh.triangles, problem))
    return nullptr;
  mesh.vertices.reserve(points.size());
  for (const LatticePoint& point : points)
    mesh.vertices.push_back({axes[0].inWorld(point.x), axes[1].inWorld(point.y), point.z});
  points = Points();
  std::erase_if(mesh.triangles, [&](const auto& triangle) { return !isShort(mesh, triangle, longest); });
  auto surface = std::make_shared<const Surface>(mesh);
  if (surface->size() != 0) return surface;
  problem = "The points of these classes in \"" + cloud.path() +
            "\" span no surface. Name classes that at least three points are in, or allow longer sides.";
  return nullptr;
}

} // namespace Zamt::Host
