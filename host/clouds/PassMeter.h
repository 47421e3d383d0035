#pragma once

#include <atomic>
#include <chrono>
#include <cstdint>
#include <functional>
#include <mutex>
#include <utility>

namespace Zamt::Host {

/// Counts the points that passes over a cloud have been through, and tells so now and then. Counting is safe
/// from several threads, and costs next to nothing where it is done for tens of thousands of points at once.
class PassMeter {
public:
  /// Is told how many points there were so far; by any of the threads, one at a time.
  using Listener = std::function<void(std::uint64_t points)>;

  /// From now on `listener`, which may be null, is told. Not while points are counted.
  void tell(Listener listener) { listener_ = std::move(listener); }

  void add(std::uint64_t points) {
    const std::uint64_t all = points_.fetch_add(points, std::memory_order_relaxed) + points;
    if (!listener_) return;
    const std::unique_lock lock(telling_, std::try_to_lock);
    const auto now = std::chrono::steady_clock::now();
    if (!lock || now < next_) return;
    next_ = now + interval;
    listener_(all);
  }

private:
  /// Fine enough for eyes, and rare enough for terminals.
  static constexpr std::chrono::milliseconds interval{100};

  std::atomic<std::uint64_t> points_{0};
  Listener listener_;
  std::mutex telling_;
  std::chrono::steady_clock::time_point next_;
};

} // namespace Zamt::Host
