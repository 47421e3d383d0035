#pragma once

#include <atomic>

namespace Zamt {

/// The wish that long work should end early, raised by whoever started the work: from another thread, or from
/// a signal handler. Work looks at it now and then, and leaves no file behind when it was raised.
class Stop {
public:
  /// Returns whether it was raised before. Safe in a signal handler.
  bool request() noexcept { return requested_.exchange(true); }
  bool requested() const noexcept { return requested_; }

private:
  std::atomic<bool> requested_{false};
  static_assert(std::atomic<bool>::is_always_lock_free, "a signal handler may only touch lock-free memory");
};

/// What is said of work that was stopped.
inline constexpr const char* stoppedMessage = "Interrupted, nothing was written.";

} // namespace Zamt
