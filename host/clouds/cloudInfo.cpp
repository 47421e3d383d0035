#include "host/clouds/cloudInfo.h"

#include "host/clouds/forEachBlock.h"

#include <algorithm>
#include <limits>
#include <oneapi/tbb/enumerable_thread_specific.h>

namespace Zamt::Host {

namespace {

/// The wrong way round while there is no value.
struct Range {
  double low = std::numeric_limits<double>::infinity();
  double high = -std::numeric_limits<double>::infinity();

  void take(const Range& other) {
    low = std::min(low, other.low);
    high = std::max(high, other.high);
  }
};

/// What one thread has seen.
struct Tally {
  explicit Tally(std::size_t fields) : ranges(fields) {}
  std::vector<Range> ranges;
  ClassCounts classes{};
};

/// Values are looked through in pieces of this many.
constexpr std::size_t pieceSize = 1024;

Range rangeOf(const Column& column, std::size_t points) {
  Range range;
  std::array<double, pieceSize> piece;
  for (std::size_t from = 0; from < points; from += pieceSize) {
    const auto values = std::span(piece).first(std::min(pieceSize, points - from));
    column.read(from, values);
    for (const double value : values) { // a NaN compares false and is left out
      if (value < range.low) range.low = value;
      if (value > range.high) range.high = value;
    }
  }
  return range;
}

void countBlock(BlockReader& block, ClassCounts& counts) {
  const Column classes = block.classes();
  for (std::size_t i = 0; i < block.size(); ++i) ++counts[classes.byteAt(i)];
}

void tallyBlock(BlockReader& block, Tally& tally) {
  const std::vector<Field>& fields = block.cloud().fields();
  for (std::size_t i = 0; i < fields.size(); ++i)
    for (unsigned component = 0; component < fields[i].components; ++component)
      tally.ranges[i].take(rangeOf(block.column(fields[i], component), block.size()));
  countBlock(block, tally.classes);
}

void add(const ClassCounts& counts, ClassCounts& sum) {
  for (std::size_t number = 0; number < sum.size(); ++number) sum[number] += counts[number];
}

FieldRange rangeOfField(const Field& field, const Range& range) {
  const bool hasValues = range.low <= range.high;
  return {field.name,
          field.type,
          field.components,
          hasValues,
          hasValues ? range.low : 0,
          hasValues ? range.high : 0};
}

std::vector<ColumnKey> allColumns(const PointCloud& cloud) {
  std::vector<ColumnKey> all;
  for (const Field& field : cloud.fields())
    for (unsigned component = 0; component < field.components; ++component)
      all.push_back(cloud.keyOf(field, component));
  return all;
}

} // namespace

bool inspectCloud(const PointCloud& cloud, const Stop& stop, CloudInfo& info, std::string& problem) {
  info = {cloud.versionMinor(), cloud.pointFormat(), cloud.size(), cloud.compression(), {}, {}, {}};
  tbb::enumerable_thread_specific<Tally> tallies([&cloud] { return Tally(cloud.fields().size()); });
  const auto visit = [&tallies](BlockReader& block) { tallyBlock(block, tallies.local()); };
  if (!forEachBlock(cloud, allColumns(cloud), stop, visit, problem)) return false;
  Tally all(cloud.fields().size());
  for (const Tally& tally : tallies) {
    for (std::size_t i = 0; i < all.ranges.size(); ++i) all.ranges[i].take(tally.ranges[i]);
    add(tally.classes, all.classes);
  }
  for (std::size_t i = 0; i < all.ranges.size(); ++i)
    info.fields.push_back(rangeOfField(cloud.fields()[i], all.ranges[i]));
  for (std::size_t axis = 0; axis < 3 && info.fields[axis].hasValues; ++axis) {
    info.bounds.low[axis] = info.fields[axis].low;
    info.bounds.high[axis] = info.fields[axis].high;
  }
  for (unsigned number = 0; number < all.classes.size(); ++number) {
    if (all.classes[number] != 0)
      info.classes.push_back({static_cast<std::uint8_t>(number), all.classes[number]});
  }
  return true;
}

bool countClasses(const PointCloud& cloud, const Stop& stop, ClassCounts& counts, std::string& problem) {
  tbb::enumerable_thread_specific<ClassCounts> parts(ClassCounts{});
  const auto visit = [&parts](BlockReader& block) { countBlock(block, parts.local()); };
  const std::array<ColumnKey, 1> expected{cloud.keyOf(cloud.classField())};
  if (!forEachBlock(cloud, expected, stop, visit, problem)) return false;
  counts = {};
  for (const ClassCounts& part : parts) add(part, counts);
  return true;
}

} // namespace Zamt::Host
