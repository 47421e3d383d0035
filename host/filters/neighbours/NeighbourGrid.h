#pragma once

#include "files/Stop.h"
#include "host/clouds/PointCloud.h"
#include "host/clouds/PointMask.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
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

  std::uint64_t key(const std::array<double, 3>& at) const {
    return part(0, at[0]) | part(1, at[1]) | part(2, at[2]);
  }

private:
  std::uint64_t part(std::size_t axis, double value) const {
    const auto index = static_cast<std::int64_t>((value - low[axis]) * perUnit[axis]) + border[axis];
    return static_cast<std::uint64_t>(index) << shift[axis];
  }
};

/// Cells a little over `radius` / `fineness` wide, around everything in `bounds`, which is finite. Where that
/// would be more cells than a key can tell apart, cells are wider.
GridLayout makeGridLayout(const Bounds& bounds, double radius, unsigned fineness);

/// The places of some points of a cloud, in the order of the cloud. The array comes without values, so that
/// the threads that fill it also are the first to touch its memory.
struct Places {
  std::size_t count = 0;
  std::unique_ptr<std::array<double, 3>[]> at;
  Bounds box; ///< Around all points of the cloud.
};

/// Reads the places of the points that are set in `members`, which are less than 2^32. False when it was
/// stopped or a block can't be read, with a sentence in `problem`.
bool readPlaces(const PointCloud& cloud, const PointMask& members, const Stop& stop, Places& places,
                std::string& problem);

/// Points in the order of their cells. Each is known by its number among the places that the grid was made
/// of.
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

/// Places in a grid; all of them lie within what the layout was made for.
NeighbourGrid makeNeighbourGrid(const Places& places, GridLayout layout);

/// Sets in `found` the points of `cloud` whose cell is, or may be, one that a point at one of the `asked`
/// places has to look into; all others are further from every one than the radius. False as `readPlaces`.
bool findSurroundings(const PointCloud& cloud, const Places& asked, const GridLayout& layout,
                      const Stop& stop, PointMask& found, std::string& problem);

} // namespace Zamt::Host
