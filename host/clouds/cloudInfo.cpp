#include "host/clouds/cloudInfo.h"

#include "files/Interruption.h"
#include "host/clouds/StandardClasses.h"

#include <algorithm>
#include <array>
#include <limits>
#include <numeric>
#include <oneapi/tbb/blocked_range.h>
#include <oneapi/tbb/parallel_reduce.h>

namespace Zamt::Host {

namespace {

/// The wrong way round while there is no value.
struct Range {
  double low = std::numeric_limits<double>::infinity();
  double high = -std::numeric_limits<double>::infinity();
};
using Ranges = std::vector<Range>;

Range rangeOf(const std::vector<double>& values) {
  Range range;
  for (const double value : values) { // a NaN compares false and is left out
    if (value < range.low) range.low = value;
    if (value > range.high) range.high = value;
  }
  return range;
}

Range join(const Range& one, const Range& other) {
  return {std::min(one.low, other.low), std::max(one.high, other.high)};
}

void addBlock(const PointCloud& cloud, std::uint64_t first, Ranges& ranges) {
  std::vector<std::uint32_t> indices(std::min<std::uint64_t>(blockPoints, cloud.size() - first));
  std::iota(indices.begin(), indices.end(), 0U);
  std::vector<double> values(indices.size());
  for (std::size_t i = 0; i < ranges.size(); ++i) {
    const Field& field = cloud.fields()[i];
    for (unsigned component = 0; component < field.components; ++component) {
      cloud.gather(field, component, first, indices, values);
      ranges[i] = join(ranges[i], rangeOf(values));
    }
  }
}

Ranges rangesOf(const PointCloud& cloud) {
  const std::uint64_t blocks = (cloud.size() + blockPoints - 1) / blockPoints;
  return tbb::parallel_reduce(
      tbb::blocked_range<std::uint64_t>(0, blocks), Ranges(cloud.fields().size()),
      [&](const tbb::blocked_range<std::uint64_t>& range, Ranges ranges) {
        for (std::uint64_t block = range.begin(); block != range.end() && !interrupted; ++block)
          addBlock(cloud, block * blockPoints, ranges);
        return ranges;
      },
      [](Ranges one, const Ranges& other) {
        std::ranges::transform(one, other, one.begin(), join);
        return one;
      });
}

} // namespace

bool inspectCloud(const PointCloud& cloud, CloudInfo& info, std::string& problem) {
  info = {cloud.versionMinor(), cloud.pointFormat(), cloud.size(), {}, {}, {}};
  const Ranges ranges = rangesOf(cloud);
  if (interrupted) {
    problem = interruptedMessage;
    return false;
  }
  for (std::size_t i = 0; i < ranges.size(); ++i) {
    const Field& field = cloud.fields()[i];
    const bool hasValues = ranges[i].low <= ranges[i].high;
    info.fields.push_back({field.name, field.type, field.components, hasValues, hasValues ? ranges[i].low : 0,
                           hasValues ? ranges[i].high : 0});
    // X, Y and Z come first in every format.
    if (i >= 3 || !hasValues) continue;
    info.bounds.low[i] = ranges[i].low;
    info.bounds.high[i] = ranges[i].high;
  }
  const auto counts = cloud.countClasses();
  for (unsigned number = 0; number < counts.size(); ++number) {
    const auto of = static_cast<std::uint8_t>(number);
    if (counts[number] != 0) info.classes.push_back({of, nameOfClass(cloud, of), counts[number]});
  }
  return true;
}

const char* nameOfType(FieldType type) {
  constexpr std::array names{"uint8", "int8",   "uint16", "int16", "uint32",
                             "int32", "uint64", "int64",  "float", "double"};
  return names[static_cast<std::size_t>(type)];
}

} // namespace Zamt::Host
