#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>

namespace Zamt::Host {

/// How many of some values lie in each of a few intervals of equal width. The width is a power of two, the
/// smallest at which the intervals suffice, so that values may come in any order and in parts.
class Histogram {
public:
  static constexpr std::size_t mostIntervals = 32;

  /// No interval will be narrower than `narrowest`, a power of two.
  explicit Histogram(double narrowest = 0x1p-1000) : width_(narrowest) {}

  /// Counts those of the values that are finite.
  void add(std::span<const double> values);
  void add(const Histogram& other);

  bool empty() const { return used_ == 0; }
  double width() const { return width_; }
  double low() const { return first_ * width_; } ///< Where the first interval begins.
  std::span<const std::uint64_t> counts() const { return std::span(counts_).first(used_); }

private:
  void add(double value, std::uint64_t count);
  bool reach(double interval);
  void widen();

  double width_;
  double first_ = 0; ///< The first interval begins at this many widths, a whole number.
  std::size_t used_ = 0;
  std::array<std::uint64_t, mostIntervals> counts_{};
};

} // namespace Zamt::Host
