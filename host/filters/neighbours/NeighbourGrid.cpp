#include "host/filters/neighbours/NeighbourGrid.h"

#include "host/filters/neighbours/KeySort.h"

#include <algorithm>
#include <bit>
#include <limits>
#include <oneapi/tbb/parallel_for.h>
#include <span>
#include <utility>

namespace Zamt::Host {
namespace {

/// As many keys say enough of all.
constexpr std::size_t sampledKeys = std::size_t{1} << 17U;

/// Places that one task moves.
constexpr std::size_t chunkPlaces = std::size_t{1} << 18U;
static_assert(Places::pieceSize % chunkPlaces == 0);

/// Places are moved into buckets of neighbouring cells first. About this many fit the second-level cache
/// together with what sorting them takes, and as many buckets can be written to at a time.
constexpr std::size_t bucketPlaces = 8192;
constexpr std::size_t maximumBuckets = 1024;

/// The keys of some of the places, ascending.
std::vector<std::uint64_t> sampleKeys(const Places& places, const GridLayout& layout) {
  std::vector<std::uint64_t> keys;
  const std::size_t step = places.count / sampledKeys + 1;
  keys.reserve(places.count / step + 1);
  for (std::size_t i = 0; i < places.count; i += step) keys.push_back(layout.key(places.at(i)));
  std::sort(keys.begin(), keys.end());
  return keys;
}

/// Cuts keys into buckets that hold about the same number of places; those of one key share a bucket.
class Buckets {
public:
  Buckets(const Places& places, const GridLayout& layout) {
    const std::size_t wanted = std::min(maximumBuckets, std::bit_ceil(places.count / bucketPlaces + 1));
    if (wanted == 1) return;
    const std::vector<std::uint64_t> keys = sampleKeys(places, layout);
    for (std::size_t i = 1; i < wanted; ++i) firstKeys_.push_back(keys[i * keys.size() / wanted]);
  }

  std::size_t size() const { return firstKeys_.size() + 1; }

  /// One less than a power of two are searched, so that each step halves them whatever the key.
  std::size_t of(std::uint64_t key) const {
    std::size_t bucket = 0;
    for (std::size_t step = size() / 2; step > 0; step /= 2)
      bucket += firstKeys_[bucket + step - 1] <= key ? step : 0;
    return bucket;
  }

private:
  std::vector<std::uint64_t> firstKeys_; ///< Of all buckets but the first.
};

class GridMaker {
public:
  GridMaker(Places places, GridLayout layout)
      : places_(std::move(places)), buckets_(places_, layout), begins_(buckets_.size() + 1, 0) {
    grid_.layout = std::move(layout);
    grid_.count = places_.count;
  }

  NeighbourGrid make() {
    moveToBuckets();
    std::vector<std::size_t> cells(buckets_.size(), 0);
    forEachBucket([&](std::size_t bucket) { cells[bucket] = sortBucket(bucket); });
    std::size_t before = 0;
    for (std::size_t& each : cells) before += std::exchange(each, before);
    grid_.cells.resize(before + 1);
    grid_.cells.back() = std::numeric_limits<std::uint64_t>::max();
    grid_.starts.resize(before + 1);
    grid_.starts.back() = static_cast<std::uint32_t>(grid_.count);
    forEachBucket([&](std::size_t bucket) { listCells(bucket, cells[bucket]); });
    return std::move(grid_);
  }

private:
  std::size_t chunks() const { return (grid_.count + chunkPlaces - 1) / chunkPlaces; }

  /// Calls `work(place, its bucket, its number)` for the places of a chunk in order.
  template <class Work>
  void forEachPlace(std::size_t chunk, Work work) const {
    const std::size_t begin = chunk * chunkPlaces;
    const std::size_t end = std::min(grid_.count, begin + chunkPlaces);
    const std::array<double, 3>* const at = &places_.at(begin);
    for (std::size_t i = begin; i < end; ++i)
      work(at[i - begin], buckets_.of(grid_.layout.key(at[i - begin])), i);
  }

  template <class Work>
  void forEachBucket(Work work) const {
    tbb::parallel_for(std::size_t{0}, buckets_.size(), work);
  }

  /// Where the places of each chunk go in each bucket, buckets side by side for each chunk.
  std::vector<std::uint32_t> planMoves() {
    std::vector<std::uint32_t> targets(chunks() * buckets_.size(), 0);
    tbb::parallel_for(std::size_t{0}, chunks(), [&](std::size_t chunk) {
      std::uint32_t* const counts = &targets[chunk * buckets_.size()];
      forEachPlace(chunk, [&](const auto&, std::size_t bucket, std::size_t) { ++counts[bucket]; });
    });
    std::uint32_t target = 0;
    for (std::size_t bucket = 0; bucket < buckets_.size(); ++bucket) {
      begins_[bucket] = target;
      for (std::size_t at = bucket; at < targets.size(); at += buckets_.size())
        target += std::exchange(targets[at], target);
    }
    begins_.back() = grid_.count;
    return targets;
  }

  /// Gives back each piece of the places once it has been moved, so that no more than one is there twice.
  void moveToBuckets() {
    if (grid_.count == 0) return;
    std::vector<std::uint32_t> targets = planMoves();
    grid_.points = std::make_unique_for_overwrite<std::uint32_t[]>(grid_.count);
    grid_.at = std::make_unique_for_overwrite<std::array<double, 3>[]>(grid_.count);
    constexpr std::size_t chunksOfPiece = Places::pieceSize / chunkPlaces;
    for (std::size_t piece = 0; piece < places_.pieces.size(); ++piece) {
      const std::size_t first = piece * chunksOfPiece;
      tbb::parallel_for(first, std::min(chunks(), first + chunksOfPiece), [&](std::size_t chunk) {
        std::uint32_t* const target = &targets[chunk * buckets_.size()];
        forEachPlace(chunk, [&](const std::array<double, 3>& at, std::size_t bucket, std::size_t i) {
          const std::uint32_t to = target[bucket]++;
          grid_.at[to] = at;
          grid_.points[to] = static_cast<std::uint32_t>(i);
        });
      });
      places_.pieces[piece].reset();
    }
  }

  std::size_t sizeOf(std::size_t bucket) const { return begins_[bucket + 1] - begins_[bucket]; }

  /// Brings the places of a bucket into the order of their keys, and tells how many keys there are.
  std::size_t sortBucket(std::size_t bucket) {
    const std::size_t size = sizeOf(bucket);
    if (size == 0) return 0;
    std::array<double, 3>* const at = &grid_.at[begins_[bucket]];
    std::uint32_t* const points = &grid_.points[begins_[bucket]];
    KeyedPoints keyed(size);
    for (std::size_t i = 0; i < size; ++i) {
      keyed.keys[i] = grid_.layout.key(at[i]);
      keyed.points[i] = static_cast<std::uint32_t>(i);
    }
    const auto [least, greatest] = std::ranges::minmax(std::span(keyed.keys.get(), size));
    for (std::uint64_t& key : std::span(keyed.keys.get(), size)) key -= least;
    sortByKey(keyed, static_cast<unsigned>(std::bit_width(greatest - least)));
    const std::vector<std::array<double, 3>> oldAt(at, at + size);
    const std::vector<std::uint32_t> oldPoints(points, points + size);
    for (std::size_t i = 0; i < size; ++i) {
      at[i] = oldAt[keyed.points[i]];
      points[i] = oldPoints[keyed.points[i]];
    }
    std::size_t distinct = 1;
    for (std::size_t i = 1; i < size; ++i) distinct += keyed.keys[i] != keyed.keys[i - 1] ? 1 : 0;
    return distinct;
  }

  /// Lists the cells of a bucket from one of the cells' numbers on.
  void listCells(std::size_t bucket, std::size_t cell) {
    std::uint64_t last = 0;
    for (std::size_t i = begins_[bucket]; i < begins_[bucket + 1]; ++i) {
      const std::uint64_t key = grid_.layout.key(grid_.at[i]);
      if (i > begins_[bucket] && key == last) continue;
      grid_.cells[cell] = last = key;
      grid_.starts[cell++] = static_cast<std::uint32_t>(i);
    }
  }

  Places places_;
  Buckets buckets_;
  std::vector<std::size_t> begins_; ///< Where the buckets begin, and behind the last.
  NeighbourGrid grid_;
};

} // namespace

double estimateCrowding(const Places& places, const GridLayout& layout) {
  const std::vector<std::uint64_t> keys = sampleKeys(places, layout);
  const auto sampled = static_cast<double>(keys.size());
  if (sampled < 2) return 1;
  double others = 0;
  for (std::size_t begin = 0, end = 0; begin < keys.size(); begin = end) {
    while (end < keys.size() && keys[end] == keys[begin]) ++end;
    const auto together = static_cast<double>(end - begin);
    others += together * (together - 1);
  }
  return 1 + others / sampled * (static_cast<double>(places.count) - 1) / (sampled - 1);
}

NeighbourGrid makeNeighbourGrid(Places places, GridLayout layout) {
  return GridMaker(std::move(places), std::move(layout)).make();
}

} // namespace Zamt::Host
