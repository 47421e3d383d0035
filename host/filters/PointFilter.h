#pragma once

#include "files/Stop.h"
#include "host/clouds/BlockReader.h"
#include "host/clouds/PointMask.h"

#include <cstdint>
#include <span>
#include <string>
#include <vector>

namespace Zamt::Host {

/// A condition that looks at one point at a time. Made for one cloud; const and safe to call from several
/// threads.
class PointFilter {
public:
  virtual ~PointFilter() = default;

  /// Writes to `holds[i]`, as 0 or 1, whether the condition holds at the point `indices[i]` of the block that
  /// `block` is at. The indices ascend. What is written for a block that can't be read means nothing.
  virtual void test(BlockReader& block, std::span<const std::uint32_t> indices,
                    std::span<std::uint8_t> holds) const = 0;

  /// Appends the columns that `test` reads.
  virtual void listColumns(const PointCloud& cloud, std::vector<ColumnKey>& columns) const = 0;

  enum class Coverage { None, Some, All };
  /// What is known of a whole block without looking at its points.
  virtual Coverage coverage(BlockReader& /*block*/) const { return Coverage::Some; }
};

/// A condition that asks about a point's surroundings, and so is worked out for all points at once.
class CloudFilter {
public:
  virtual ~CloudFilter() = default;

  /// Sets in `holds`, which comes clear, the points of `asked` at which the condition holds. False, with a
  /// sentence in `problem`, when it could not be worked out or was stopped.
  virtual bool test(const PointMask& asked, const Stop& stop, PointMask& holds,
                    std::string& problem) const = 0;
};

} // namespace Zamt::Host
