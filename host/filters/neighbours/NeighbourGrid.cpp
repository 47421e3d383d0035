#include "host/filters/neighbours/NeighbourGrid.h"

#include "host/clouds/forEachBlock.h"
#include "host/filters/neighbours/KeySort.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <limits>
#include <numeric>
#include <oneapi/tbb/blocked_range.h>
#include <oneapi/tbb/enumerable_thread_specific.h>
#include <oneapi/tbb/parallel_for.h>
#include <span>
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

/// Room to read the places of a block's points.
struct BlockPlaces {
  std::vector<std::uint32_t> indices;
  std::array<std::vector<double>, 3> values;

  /// Reads those that `indices` lists.
  void read(BlockReader& block) {
    for (std::size_t axis = 0; axis < 3; ++axis) {
      values[axis].resize(indices.size());
      block.axis(axis).gather(indices, values[axis]);
    }
  }
  std::array<double, 3> at(std::size_t i) const { return {values[0][i], values[1][i], values[2][i]}; }
};

/// A box that is as good as none, for joining others to it.
Bounds noBounds() {
  constexpr double infinity = std::numeric_limits<double>::infinity();
  return {{infinity, infinity, infinity}, {-infinity, -infinity, -infinity}};
}

void join(Bounds& all, const Bounds& one) {
  for (std::size_t axis = 0; axis < 3; ++axis) {
    all.low[axis] = std::min(all.low[axis], one.low[axis]);
    all.high[axis] = std::max(all.high[axis], one.high[axis]);
  }
}

/// What one thread that reads places needs.
struct Reading {
  BlockPlaces places;
  Bounds box = noBounds();
};

/// Where the members of each block begin among all members, and behind the last block, how many there are.
std::vector<std::size_t> countBlocks(const BlockTable& blocks, const PointMask& members) {
  std::vector<std::size_t> begins{0};
  begins.reserve(blocks.size() + 1);
  for (std::size_t block = 0; block < blocks.size(); ++block)
    begins.push_back(begins.back() +
                     static_cast<std::size_t>(members.count(blocks.first(block), blocks.count(block))));
  return begins;
}

/// Entries that one task works on.
constexpr std::size_t taskEntries = std::size_t{1} << 15U;

/// Calls `work(i)` for all numbers below `count`, in parallel.
template <class Work>
void forEachEntry(std::size_t count, Work work) {
  tbb::parallel_for(tbb::blocked_range<std::size_t>(0, count, taskEntries), [&](const auto& range) {
    for (std::size_t i = range.begin(); i < range.end(); ++i) work(i);
  });
}

KeyedPoints keyPlaces(const Places& places, const GridLayout& layout) {
  KeyedPoints keyed(places.count);
  forEachEntry(places.count, [&](std::size_t i) {
    keyed.keys[i] = layout.key(places.at[i]);
    keyed.points[i] = static_cast<std::uint32_t>(i);
  });
  return keyed;
}

void listCells(const KeyedPoints& keyed, NeighbourGrid& grid) {
  std::size_t distinct = 0;
  for (std::size_t i = 0; i < keyed.count; ++i)
    distinct += i == 0 || keyed.keys[i] != keyed.keys[i - 1] ? 1 : 0;
  grid.cells.reserve(distinct);
  grid.starts.reserve(distinct + 1);
  for (std::size_t i = 0; i < keyed.count; ++i)
    if (i == 0 || keyed.keys[i] != keyed.keys[i - 1]) {
      grid.cells.push_back(keyed.keys[i]);
      grid.starts.push_back(static_cast<std::uint32_t>(i));
    }
  grid.starts.push_back(static_cast<std::uint32_t>(keyed.count));
}

void placeCoordinates(const Places& places, NeighbourGrid& grid) {
  grid.x = std::make_unique_for_overwrite<double[]>(grid.count);
  grid.y = std::make_unique_for_overwrite<double[]>(grid.count);
  grid.z = std::make_unique_for_overwrite<double[]>(grid.count);
  forEachEntry(grid.count, [&](std::size_t i) {
    const std::array<double, 3>& at = places.at[grid.points[i]];
    grid.x[i] = at[0];
    grid.y[i] = at[1];
    grid.z[i] = at[2];
  });
}

/// A set of keys that may answer yes for a key that it does not hold: one bit for each hash.
class KeyMarks {
public:
  explicit KeyMarks(std::size_t keys) : words_(std::bit_ceil(keys / 4 + 16)) {}

  void add(std::uint64_t key) {
    const std::uint64_t bit = bitOf(key);
    words_[static_cast<std::size_t>(bit / 64)] |= std::uint64_t{1} << (bit % 64);
  }
  bool mayHold(std::uint64_t key) const {
    const std::uint64_t bit = bitOf(key);
    return ((words_[static_cast<std::size_t>(bit / 64)] >> (bit % 64)) & 1) != 0;
  }

private:
  /// Multiplication spreads keys that differ in any bit over the upper bits of the product.
  std::uint64_t bitOf(std::uint64_t key) const {
    const auto width = static_cast<unsigned>(std::bit_width(words_.size() * 64 - 1));
    return (key * 0x9E3779B97F4A7C15U) >> (64 - width);
  }

  std::vector<std::uint64_t> words_; ///< 16 bits a key or more.
};

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

double NeighbourGrid::crowding() const {
  double total = 0;
  for (std::size_t c = 0; c < cells.size(); ++c) {
    const double inCell = starts[c + 1] - starts[c];
    total += inCell * inCell;
  }
  return count == 0 ? 0 : total / static_cast<double>(count);
}

bool readPlaces(const PointCloud& cloud, const PointMask& members, const Stop& stop, Places& places,
                std::string& problem) {
  const std::vector<std::size_t> begins = countBlocks(cloud.blocks(), members);
  places.count = begins.back();
  places.at = std::make_unique_for_overwrite<std::array<double, 3>[]>(places.count);
  tbb::enumerable_thread_specific<Reading> readings;
  const auto visit = [&](BlockReader& block) {
    Reading& reading = readings.local();
    join(reading.box, block.bounds());
    const std::size_t begin = begins[block.block()];
    if (begin == begins[block.block() + 1]) return;
    reading.places.indices.clear();
    members.list(block.first(), block.size(), reading.places.indices);
    reading.places.read(block);
    for (std::size_t i = 0; i < reading.places.indices.size(); ++i)
      places.at[begin + i] = reading.places.at(i);
  };
  if (!forEachBlock(cloud, axisColumns, stop, visit, problem)) return false;
  places.box = noBounds();
  for (const Reading& reading : readings) join(places.box, reading.box);
  return true;
}

NeighbourGrid makeNeighbourGrid(const Places& places, GridLayout layout) {
  NeighbourGrid grid;
  KeyedPoints keyed = keyPlaces(places, layout);
  sortByKey(keyed, layout.bits);
  grid.layout = std::move(layout);
  grid.count = keyed.count;
  listCells(keyed, grid);
  grid.points = std::move(keyed.points);
  keyed.keys.reset();
  placeCoordinates(places, grid);
  return grid;
}

bool findSurroundings(const PointCloud& cloud, const Places& asked, const GridLayout& layout,
                      const Stop& stop, PointMask& found, std::string& problem) {
  std::size_t cellsLookedAt = 0;
  for (const GridRow& row : layout.rows) cellsLookedAt += static_cast<std::size_t>(2 * row.reach + 1);
  KeyMarks marks(asked.count * cellsLookedAt);
  std::uint64_t marked = 0;
  for (std::size_t i = 0; i < asked.count; ++i) {
    const std::uint64_t key = layout.key(asked.at[i]);
    if (i > 0 && key == marked) continue;
    marked = key;
    for (const GridRow& row : layout.rows)
      for (std::int64_t dx = -row.reach; dx <= row.reach; ++dx)
        marks.add(key + static_cast<std::uint64_t>(row.offset + dx));
  }
  found = PointMask(cloud.size());
  tbb::enumerable_thread_specific<BlockPlaces> rooms;
  const auto visit = [&](BlockReader& block) {
    BlockPlaces& room = rooms.local();
    room.indices.resize(block.size());
    std::iota(room.indices.begin(), room.indices.end(), 0U);
    room.read(block);
    std::size_t kept = 0;
    for (std::size_t i = 0; i < block.size(); ++i) {
      room.indices[kept] = static_cast<std::uint32_t>(i);
      kept += marks.mayHold(layout.key(room.at(i))) ? 1 : 0;
    }
    found.add(block.first(), std::span(room.indices).first(kept));
  };
  return forEachBlock(cloud, axisColumns, stop, visit, problem);
}

} // namespace Zamt::Host
