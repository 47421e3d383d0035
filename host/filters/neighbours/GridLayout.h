#pragma once

#include "host/clouds/Bounds.h"

#include <array>
#include <cstddef>
#include <cstdint>
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

} // namespace Zamt::Host
