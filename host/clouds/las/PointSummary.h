#pragma once

#include "host/clouds/las/LasEdits.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <span>

namespace Zamt::Host {

/// What is said beside the points of all of them together: gathered from their records, a part by each
/// thread.
class PointSummary {
public:
  /// For points of that layout, which must outlive the summary.
  explicit PointSummary(const LasLayout& layout);

  /// Adds records that lie one after the other.
  void add(std::span<const std::byte> records);

  /// Adds what was gathered of other points of the same layout.
  void add(const PointSummary& other);

  std::uint64_t points() const { return points_; }

  /// The least and the greatest GPS time of points of the formats 6 to 10; 0 where there are none.
  std::array<double, 2> times() const;

  /// Has the header, and the record of a compatible file, of the file with these bytes say it.
  void describe(std::span<const std::byte> input, LasEdits& edits) const;

private:
  static constexpr std::size_t returns = 15;

  void describeCounts(LasEdits& edits) const;
  void describeCompatible(LasEdits& edits) const;

  const LasLayout* layout_;
  std::uint64_t points_ = 0;
  std::array<std::uint64_t, returns + 1> byReturn_{};       ///< 0 counts what has no number.
  std::array<std::uint64_t, 2 * returns + 1> compatible_{}; ///< The same of points of a compatible file.
  std::array<std::int32_t, 3> low_;
  std::array<std::int32_t, 3> high_;
  double earliest_ = std::numeric_limits<double>::infinity();
  double latest_ = -std::numeric_limits<double>::infinity();
};

} // namespace Zamt::Host
