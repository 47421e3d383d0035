#include "host/filters/neighbours/GridLayout.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <utility>

namespace Zamt::Host {
namespace {

/// A key has 64 bits; two are left over, so that keys with an offset added stay in range.
constexpr unsigned keyBits = 62;

/// At most 2^30 cells along an axis, so that the index of a cell is right to a small part of a cell in spite
/// of rounding.
constexpr double maximumCells = 1073741824;

/// More than the error of a cell's index, in cells.
constexpr double indexMargin = 1e-5;

/// Cells are wider than a whole part of the radius by this factor, so that the last cell within reach is not
/// one that can be reached by rounding only.
constexpr double edgeFactor = 1 + 1e-4;

/// The square of a smaller distance is zero or close to it in doubles, so that such distances count as none.
constexpr double smallestEdge = 1e-150;

using Edges = std::array<double, 3>;

std::int64_t cellsWithin(double distance, double edge) {
  return static_cast<std::int64_t>(std::floor(distance / edge + indexMargin)) + 1;
}

unsigned bitsFor(double extent, double edge, std::int64_t border) {
  const auto cells = static_cast<std::uint64_t>(extent / edge) + 2 + 2 * static_cast<std::uint64_t>(border);
  return static_cast<unsigned>(std::bit_width(cells));
}

/// Edges of cells for which all indices fit a key.
Edges chooseEdges(const std::array<double, 3>& extent, double radius, unsigned fineness) {
  Edges edges{};
  for (std::size_t axis = 0; axis < 3; ++axis)
    edges[axis] = std::max({radius / fineness * edgeFactor, extent[axis] / maximumCells, smallestEdge});
  for (;;) {
    std::array<unsigned, 3> bits{};
    for (std::size_t axis = 0; axis < 3; ++axis)
      bits[axis] = bitsFor(extent[axis], edges[axis], cellsWithin(radius, edges[axis]));
    if (bits[0] + bits[1] + bits[2] <= keyBits) return edges;
    edges[static_cast<std::size_t>(std::max_element(bits.begin(), bits.end()) - bits.begin())] *= 2;
  }
}

/// The least and the greatest distance between points of two cells that are `cells` apart along an axis.
double leastGap(std::int64_t cells, double edge) {
  return std::max(0.0, static_cast<double>(cells) - 1 - indexMargin) * edge;
}
double greatestGap(std::int64_t cells, double edge) {
  return (static_cast<double>(cells) + 1 + indexMargin) * edge;
}

struct RowCandidate {
  double nearest = 0; ///< The square of the least distance.
  GridRow row;
};

RowCandidate makeRow(std::int64_t dy, std::int64_t dz, const Edges& edges, double radius) {
  const double nearY = leastGap(std::abs(dy), edges[1]);
  const double nearZ = leastGap(std::abs(dz), edges[2]);
  const double farY = greatestGap(std::abs(dy), edges[1]);
  const double farZ = greatestGap(std::abs(dz), edges[2]);
  const double squared = radius * radius;
  RowCandidate made;
  made.nearest = nearY * nearY + nearZ * nearZ;
  made.row.reach = cellsWithin(std::sqrt(std::max(0.0, squared - made.nearest)), edges[0]);
  const double left = squared - (farY * farY + farZ * farZ);
  made.row.wholeWithin = -1;
  if (left > 0)
    made.row.wholeWithin = std::max<std::int64_t>(
        -1, static_cast<std::int64_t>(std::floor(std::sqrt(left) / edges[0] - indexMargin)) - 1);
  return made;
}

std::vector<GridRow> makeRows(const GridLayout& layout, const Edges& edges, double radius) {
  std::vector<RowCandidate> candidates;
  for (std::int64_t dz = -layout.border[2]; dz <= layout.border[2]; ++dz)
    for (std::int64_t dy = -layout.border[1]; dy <= layout.border[1]; ++dy) {
      RowCandidate made = makeRow(dy, dz, edges, radius);
      if (made.nearest > radius * radius * (1 + indexMargin)) continue;
      made.row.offset = dy * (std::int64_t{1} << layout.shift[1]) + dz * (std::int64_t{1} << layout.shift[2]);
      candidates.push_back(made);
    }
  std::stable_sort(candidates.begin(), candidates.end(), [](const RowCandidate& a, const RowCandidate& b) {
    return std::pair(a.nearest, std::abs(a.row.offset)) < std::pair(b.nearest, std::abs(b.row.offset));
  });
  std::vector<GridRow> rows;
  rows.reserve(candidates.size());
  for (const RowCandidate& candidate : candidates) rows.push_back(candidate.row);
  return rows;
}

} // namespace

GridLayout makeGridLayout(const Bounds& bounds, double radius, unsigned fineness) {
  GridLayout layout;
  layout.low = bounds.low;
  std::array<double, 3> extent{};
  for (std::size_t axis = 0; axis < 3; ++axis) extent[axis] = bounds.high[axis] - bounds.low[axis];
  const Edges edges = chooseEdges(extent, radius, fineness);
  for (std::size_t axis = 0; axis < 3; ++axis) {
    layout.perUnit[axis] = 1 / edges[axis];
    layout.border[axis] = cellsWithin(radius, edges[axis]);
    layout.shift[axis] = layout.bits;
    layout.bits += bitsFor(extent[axis], edges[axis], layout.border[axis]);
  }
  layout.rows = makeRows(layout, edges, radius);
  return layout;
}

} // namespace Zamt::Host
