#pragma once

#include "host/filters/neighbours/GridLayout.h"
#include "host/filters/neighbours/Places.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

namespace Zamt::Host {

/// Points in the order of their cells. Each is known by its number among the places that the grid was made
/// of.
struct NeighbourGrid {
  GridLayout layout;
  std::size_t count = 0;
  std::unique_ptr<std::uint32_t[]> points;     ///< The points in the order of their cells,
  std::unique_ptr<std::array<double, 3>[]> at; ///< and their places in the same order.
  std::vector<std::uint64_t> cells; ///< The keys of the cells that hold points, ascending, and a greater one,
  std::vector<std::uint32_t> starts; ///< where their points begin, and for that one, `count`.

  std::size_t cellCount() const { return cells.size() - 1; }
};

/// The mean number of points in the cell of a point, estimated from some of them.
double estimateCrowding(const Places& places, const GridLayout& layout);

/// Moves places into a grid; all of them lie within what the layout was made for.
NeighbourGrid makeNeighbourGrid(Places places, GridLayout layout);

} // namespace Zamt::Host
