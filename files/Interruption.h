#pragma once

#include <atomic>

namespace Zamt {

/// Set when the user asked to stop. Long work looks at it between blocks and ends early, leaving no file
/// behind.
inline std::atomic<bool> interrupted{false};

/// What is said of work that was stopped.
inline constexpr const char* interruptedMessage = "Interrupted, nothing was written.";

} // namespace Zamt
