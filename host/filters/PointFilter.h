#pragma once

#include "host/clouds/PointCloud.h"
#include "host/clouds/PointMask.h"

#include <cstdint>
#include <span>
#include <string>

namespace Zamt::Host {

/// A condition that looks at one point at a time. Made for one cloud; const and safe to call from several
/// threads.
class PointFilter {
public:
  virtual ~PointFilter() = default;

  /// Writes to `holds[i]`, as 0 or 1, whether the condition holds at point `first + indices[i]`. `first` is a
  /// multiple of `blockPoints`, the indices ascend and stay below it.
  virtual void test(std::uint64_t first, std::span<const std::uint32_t> indices,
                    std::span<std::uint8_t> holds) const = 0;

  enum class Coverage { None, Some, All };
  /// What is known of a whole block without looking at its points.
  virtual Coverage coverage(std::uint64_t /*first*/) const { return Coverage::Some; }
};

/// A condition that asks about a point's surroundings, and so is worked out for all points at once.
class CloudFilter {
public:
  virtual ~CloudFilter() = default;

  /// Sets in `holds`, which comes clear, the points of `asked` at which the condition holds. False, with a
  /// sentence in `problem`, when it could not be worked out.
  virtual bool test(const PointMask& asked, PointMask& holds, std::string& problem) const = 0;
};

} // namespace Zamt::Host
