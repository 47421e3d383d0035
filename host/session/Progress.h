#pragma once

#include <cstdint>
#include <functional>
#include <string>

namespace Zamt::Host {

/// How far a long work is.
struct ProgressNow {
  std::string what;         ///< Is worked on.
  std::uint64_t done = 0;   ///< Of `total` such things.
  std::uint64_t total = 0;  ///< Likewise.
  double part = 0;          ///< Of the one that is worked on, from 0 to 1.
  std::uint64_t points = 0; ///< That one has; 0 while that is not known.
};

/// Is told how far a long work is; by any thread, one at a time.
using Progress = std::function<void(const ProgressNow&)>;

} // namespace Zamt::Host
