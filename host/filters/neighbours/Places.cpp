#include "host/filters/neighbours/Places.h"

#include "host/clouds/forEachBlock.h"

#include <algorithm>
#include <bit>
#include <limits>
#include <numeric>
#include <oneapi/tbb/enumerable_thread_specific.h>
#include <span>

namespace Zamt::Host {
namespace {

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

bool readPlaces(const PointCloud& cloud, const PointMask& members, const Stop& stop, Places& places,
                std::string& problem) {
  const std::vector<std::size_t> begins = countBlocks(cloud.blocks(), members);
  places.count = begins.back();
  for (std::size_t at = 0; at < places.count; at += Places::pieceSize)
    places.pieces.push_back(std::make_unique_for_overwrite<std::array<double, 3>[]>(
        std::min(Places::pieceSize, places.count - at)));
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
      places.at(begin + i) = reading.places.at(i);
  };
  if (!forEachBlock(cloud, axisColumns, stop, visit, problem)) return false;
  places.box = noBounds();
  for (const Reading& reading : readings) join(places.box, reading.box);
  return true;
}

bool findSurroundings(const PointCloud& cloud, const Places& asked, const GridLayout& layout,
                      const Stop& stop, PointMask& found, std::string& problem) {
  std::size_t cellsLookedAt = 0;
  for (const GridRow& row : layout.rows) cellsLookedAt += static_cast<std::size_t>(2 * row.reach + 1);
  KeyMarks marks(asked.count * cellsLookedAt);
  std::uint64_t marked = 0;
  for (std::size_t i = 0; i < asked.count; ++i) {
    const std::uint64_t key = layout.key(asked.at(i));
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
