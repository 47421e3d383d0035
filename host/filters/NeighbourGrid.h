#pragma once

#include "host/clouds/PointCloud.h"
#include "host/clouds/PointMask.h"
#include "host/filters/KeySort.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

namespace Zamt::Host {

/// One line of cells along x, beside the cell of a point that is asked about. All distances are in cells.
struct GridRow {
  std::int64_t offset = 0;      ///< What to add to the cell's key for the cell of the same x in this line.
  std::int64_t reach = 0;       ///< Cells further than this along x are out of the radius.
  std::int64_t wholeWithin = 0; ///< Cells up to this far are whole within the radius; -1 if none is.
};

/// How space is cut into cells. A cell is known by a key that holds its three indices, x lowest, each with
/// room for the cells beside it; only cells that hold points exist, so the extent of a cloud costs nothing.
struct GridLayout {
  std::array<double, 3> low{};
  std::array<double, 3> perUnit{}; ///< Cells in one world unit.
  std::array<std::int64_t, 3> border{};
  std::array<unsigned, 3> shift{};
  unsigned bits = 0;         ///< Of a key.
  std::vector<GridRow> rows; ///< Those within the radius, nearest first.

  std::uint64_t key(double x, double y, double z) const { return part(0, x) | part(1, y) | part(2, z); }

private:
  std::uint64_t part(std::size_t axis, double value) const {
    const auto index = static_cast<std::int64_t>((value - low[axis]) * perUnit[axis]) + border[axis];
    return static_cast<std::uint64_t>(index) << shift[axis];
  }
};

/// Cells a little over `radius` / `fineness` wide, around everything in `bounds`, which is finite. Where that
/// would be more cells than a key can tell apart, cells are wider.
GridLayout makeGridLayout(const Bounds& bounds, double radius, unsigned fineness);

/// Some points of a cloud, in the order of their cells.
struct NeighbourGrid {
  GridLayout layout;
  std::size_t count = 0;
  std::unique_ptr<std::uint32_t[]> points; ///< The points in the order of their cells,
  std::unique_ptr<double[]> x;             ///< and their coordinates in the same order.
  std::unique_ptr<double[]> y;             ///<
  std::unique_ptr<double[]> z;             ///<
  std::vector<std::uint64_t> cells;        ///< The keys of the cells that hold points, ascending,
  std::vector<std::uint32_t> starts;       ///< where their points begin, and behind the last cell, `count`.

  /// The mean number of points in the cell of a point.
  double crowding() const;
};

/// The points of `cloud` that are set in `members`, in a grid. The cloud has less than 2^32 points.
NeighbourGrid makeNeighbourGrid(const PointCloud& cloud, const PointMask& members, GridLayout layout);

/// The points of `cloud` whose cell is, or may be, one that a point of `asked` has to look into; all others
/// are further from every asked point than the radius.
PointMask findSurroundings(const PointCloud& cloud, const PointMask& asked, const GridLayout& layout);

} // namespace Zamt::Host
