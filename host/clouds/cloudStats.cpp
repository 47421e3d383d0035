#include "host/clouds/cloudStats.h"

#include "host/clouds/forEachBlock.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <limits>
#include <oneapi/tbb/enumerable_thread_specific.h>
#include <unordered_map>

namespace Zamt::Host {

namespace {

/// Values are looked through in pieces of this many.
constexpr std::size_t pieceSize = 1024;

constexpr double infinity = std::numeric_limits<double>::infinity();

/// A sum that keeps what rounding takes from it, so that the order of adding does not show.
class CarefulSum {
public:
  void add(double value) {
    const double sum = sum_ + value;
    const double added = sum - sum_;
    lost_ += (sum_ - (sum - added)) + (value - added);
    sum_ = sum;
  }
  void add(const CarefulSum& other) {
    add(other.sum_);
    lost_ += other.lost_;
  }
  double value() const { return sum_ + lost_; }

private:
  double sum_ = 0;
  double lost_ = 0;
};

/// The values of one column, as far as they were seen.
class FieldTally {
public:
  /// Distances are taken from `about`, a value among the others, so that squares stay small.
  FieldTally(double narrowest, double about) : about_(about), histogram_(narrowest) {}

  void add(std::span<const double> values) {
    for (const double value : values) {
      if (!std::isfinite(value)) continue;
      ++count_;
      low_ = std::min(low_, value);
      high_ = std::max(high_, value);
      sum_.add(value - about_);
      squares_.add((value - about_) * (value - about_));
    }
    histogram_.add(values);
  }

  void add(const FieldTally& other) {
    count_ += other.count_;
    low_ = std::min(low_, other.low_);
    high_ = std::max(high_, other.high_);
    sum_.add(other.sum_);
    squares_.add(other.squares_);
    histogram_.add(other.histogram_);
  }

  FieldStats stats(const std::string& name, unsigned component) const {
    if (count_ == 0) return {name, component, 0, 0, 0, 0, 0, histogram_};
    const auto count = static_cast<double>(count_);
    const double mean = sum_.value() / count;
    const double deviation = std::sqrt(std::max(0.0, squares_.value() / count - mean * mean));
    return {name, component, count_, low_, high_, about_ + mean, deviation, histogram_};
  }

private:
  double about_;
  std::uint64_t count_ = 0;
  double low_ = infinity;
  double high_ = -infinity;
  CarefulSum sum_;
  CarefulSum squares_;
  Histogram histogram_;
};

/// A set of squares in plan with sides of one unit.
class Cells {
public:
  void add(double x, double y) {
    constexpr double farthest = 1e15; // beyond it a step from double to double is no unit any more
    if (!(std::abs(x) < farthest && std::abs(y) < farthest)) return;
    const auto column = static_cast<std::int64_t>(std::floor(x));
    const auto row = static_cast<std::int64_t>(std::floor(y));
    const Key key{column >> 3, row >> 3};
    if (!last_ || key != lastKey_) {
      last_ = &tiles_[key];
      lastKey_ = key;
    }
    *last_ |= std::uint64_t{1} << ((column & 7) * 8 + (row & 7));
  }

  void add(const Cells& other) {
    for (const auto& [key, held] : other.tiles_) tiles_[key] |= held;
  }

  std::uint64_t count() const {
    std::uint64_t cells = 0;
    for (const auto& [key, held] : tiles_) cells += static_cast<std::uint64_t>(std::popcount(held));
    return cells;
  }

private:
  /// A tile of eight by eight squares.
  using Key = std::pair<std::int64_t, std::int64_t>;
  struct Hash {
    std::size_t operator()(const Key& key) const {
      const auto mixed = static_cast<std::uint64_t>(key.first) * 0x9E3779B97F4A7C15U;
      return (mixed ^ static_cast<std::uint64_t>(key.second)) * 0xC2B2AE3D27D4EB4FU;
    }
  };

  std::unordered_map<Key, std::uint64_t, Hash> tiles_;
  Key lastKey_;
  std::uint64_t* last_ = nullptr; ///< Of `lastKey_`; what a map holds does not move.
};

struct PointTally {
  PointStats stats{0, 0, {{infinity, infinity, infinity}, {-infinity, -infinity, -infinity}}, 0};
  Cells cells;

  void add(const PointTally& other) {
    stats.points += other.stats.points;
    stats.lastReturns += other.stats.lastReturns;
    for (std::size_t axis = 0; axis < 3; ++axis) {
      stats.bounds.low[axis] = std::min(stats.bounds.low[axis], other.stats.bounds.low[axis]);
      stats.bounds.high[axis] = std::max(stats.bounds.high[axis], other.stats.bounds.high[axis]);
    }
    cells.add(other.cells);
  }

  PointStats finished() const {
    PointStats all = stats;
    if (all.points == 0) all.bounds = {};
    all.cells = cells.count();
    return all;
  }
};

/// What one thread has seen.
struct Tally {
  std::vector<FieldTally> fields;
  std::vector<PointTally> classes = std::vector<PointTally>(256);
};

/// The first value of each column, in the order of the columns; 0 where there is none.
std::vector<double> firstValues(const PointCloud& cloud) {
  std::vector<double> first;
  std::size_t block = 0;
  while (block < cloud.blocks().size() && cloud.blocks().count(block) == 0) ++block;
  BlockReader reader(cloud);
  if (block < cloud.blocks().size()) reader.moveTo(block);
  for (const Field& field : cloud.fields())
    for (unsigned component = 0; component < field.components; ++component) {
      double value = 0;
      if (block < cloud.blocks().size()) reader.column(field, component).read(0, std::span(&value, 1));
      first.push_back(std::isfinite(value) ? value : 0);
    }
  return first;
}

Tally emptyTally(const PointCloud& cloud, const std::vector<double>& first) {
  Tally tally;
  for (const Field& field : cloud.fields())
    for (unsigned component = 0; component < field.components; ++component) {
      const bool whole = field.type != FieldType::F32 && field.type != FieldType::F64 &&
                         field.scale[component] == 1 && field.origin[component] == 0;
      tally.fields.emplace_back(whole ? 1 : 0x1p-1000, first[tally.fields.size()]);
    }
  return tally;
}

void tallyFields(BlockReader& block, Tally& tally) {
  std::size_t place = 0;
  std::array<double, pieceSize> piece;
  for (const Field& field : block.cloud().fields())
    for (unsigned component = 0; component < field.components; ++component, ++place) {
      const Column column = block.column(field, component);
      for (std::size_t from = 0; from < block.size(); from += pieceSize) {
        const auto values = std::span(piece).first(std::min(pieceSize, block.size() - from));
        column.read(from, values);
        tally.fields[place].add(values);
      }
    }
}

void tallyClasses(BlockReader& block, Tally& tally) {
  std::array<std::array<double, pieceSize>, 5> values; // x, y, z, number of the return, number of returns
  const PointCloud& cloud = block.cloud();
  const std::array<const Field*, 5> fields{&cloud.fields()[0], &cloud.fields()[1], &cloud.fields()[2],
                                           cloud.findField("ReturnNumber"),
                                           cloud.findField("NumberOfReturns")};
  const Column classes = block.classes();
  for (std::size_t from = 0; from < block.size(); from += pieceSize) {
    const std::size_t count = std::min(pieceSize, block.size() - from);
    for (std::size_t i = 0; i < fields.size(); ++i) {
      values[i][0] = static_cast<double>(i); // without these fields no return is the last one
      if (fields[i]) block.column(*fields[i]).read(from, std::span(values[i]).first(count));
    }
    for (std::size_t i = 0; i < count; ++i) {
      PointTally& points = tally.classes[classes.byteAt(from + i)];
      ++points.stats.points;
      if (fields[3] && fields[4] && values[3][i] == values[4][i]) ++points.stats.lastReturns;
      for (std::size_t axis = 0; axis < 3; ++axis) {
        points.stats.bounds.low[axis] = std::min(points.stats.bounds.low[axis], values[axis][i]);
        points.stats.bounds.high[axis] = std::max(points.stats.bounds.high[axis], values[axis][i]);
      }
      points.cells.add(values[0][i], values[1][i]);
    }
  }
}

CloudStats statsOf(const PointCloud& cloud, const Tally& tally) {
  CloudStats stats;
  for (const Field& field : cloud.fields())
    for (unsigned component = 0; component < field.components; ++component)
      stats.fields.push_back(tally.fields[stats.fields.size()].stats(field.name, component));
  PointTally all;
  for (unsigned i = 0; i < tally.classes.size(); ++i) {
    const auto number = static_cast<std::uint8_t>(i);
    if (tally.classes[i].stats.points == 0) continue;
    stats.classes.push_back({number, tally.classes[i].finished()});
    all.add(tally.classes[i]);
  }
  stats.all = all.finished();
  return stats;
}

} // namespace

bool measureCloud(const PointCloud& cloud, const Stop& stop, CloudStats& stats, std::string& problem) {
  const std::vector<double> first = firstValues(cloud);
  tbb::enumerable_thread_specific<Tally> tallies([&] { return emptyTally(cloud, first); });
  const auto visit = [&tallies](BlockReader& block) {
    tallyFields(block, tallies.local());
    tallyClasses(block, tallies.local());
  };
  std::vector<ColumnKey> columns;
  for (const Field& field : cloud.fields())
    for (unsigned component = 0; component < field.components; ++component)
      columns.push_back(cloud.keyOf(field, component));
  if (!forEachBlock(cloud, columns, stop, visit, problem)) return false;
  Tally all = emptyTally(cloud, first);
  for (const Tally& tally : tallies) {
    for (std::size_t i = 0; i < all.fields.size(); ++i) all.fields[i].add(tally.fields[i]);
    for (std::size_t i = 0; i < all.classes.size(); ++i) all.classes[i].add(tally.classes[i]);
  }
  stats = statsOf(cloud, all);
  return true;
}

CloudInfo infoOf(const PointCloud& cloud, const CloudStats& stats) {
  CloudInfo info{
      cloud.versionMinor(), cloud.pointFormat(), cloud.size(), cloud.compression(), stats.all.bounds, {}, {}};
  for (std::size_t i = 0; const Field& field : cloud.fields()) {
    FieldRange range{field.name, field.type, field.components};
    for (unsigned component = 0; component < field.components; ++component) {
      const FieldStats& one = stats.fields[i++];
      if (one.values == 0) continue;
      range.low = range.hasValues ? std::min(range.low, one.low) : one.low;
      range.high = range.hasValues ? std::max(range.high, one.high) : one.high;
      range.hasValues = true;
    }
    info.fields.push_back(std::move(range));
  }
  for (const ClassStats& entry : stats.classes) info.classes.push_back({entry.number, entry.points.points});
  return info;
}

} // namespace Zamt::Host
