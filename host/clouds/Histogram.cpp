#include "host/clouds/Histogram.h"

#include <algorithm>
#include <cmath>

namespace Zamt::Host {

void Histogram::add(std::span<const double> values) {
  for (const double value : values)
    if (std::isfinite(value)) add(value, 1);
}

void Histogram::add(const Histogram& other) {
  while (width_ < other.width_) widen();
  for (std::size_t i = 0; i < other.used_; ++i)
    if (other.counts_[i] != 0) add((other.first_ + static_cast<double>(i)) * other.width_, other.counts_[i]);
}

/// Quotients by a power of two are exact, or infinite.
void Histogram::add(double value, std::uint64_t count) {
  double interval = std::floor(value / width_);
  while (!reach(interval)) {
    widen();
    interval = std::floor(value / width_);
  }
  counts_[static_cast<std::size_t>(interval - first_)] += count;
}

/// Makes an interval one of those that are counted; false when they would be too many.
bool Histogram::reach(double interval) {
  if (interval >= first_ && interval - first_ < static_cast<double>(used_)) return true;
  if (!std::isfinite(interval)) return false;
  if (used_ == 0) first_ = interval;
  const double low = std::min(interval, first_);
  const double more = first_ - low;
  const double needed = std::max(interval - low + 1, more + static_cast<double>(used_));
  if (needed > static_cast<double>(mostIntervals)) return false;
  std::shift_right(counts_.begin(), counts_.end(), static_cast<std::ptrdiff_t>(more));
  std::fill_n(counts_.begin(), static_cast<std::size_t>(more), 0);
  first_ = low;
  used_ = static_cast<std::size_t>(needed);
  return true;
}

/// Joins intervals two by two.
void Histogram::widen() {
  width_ *= 2;
  const double first = std::floor(first_ / 2);
  const auto odd = static_cast<std::size_t>(first_ - 2 * first);
  std::array<std::uint64_t, mostIntervals> joined{};
  for (std::size_t i = 0; i < used_; ++i) joined[(i + odd) / 2] += counts_[i];
  counts_ = joined;
  first_ = first;
  if (used_ != 0) used_ = (used_ - 1 + odd) / 2 + 1;
}

} // namespace Zamt::Host
