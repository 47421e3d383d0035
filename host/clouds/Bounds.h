#pragma once

#include <array>

namespace Zamt::Host {

/// An axis-aligned box, both ends inclusive; the empty box has its ends the wrong way round.
struct Bounds {
  std::array<double, 3> low{1, 1, 1};
  std::array<double, 3> high{0, 0, 0};
  bool empty() const { return low[0] > high[0]; }
};

} // namespace Zamt::Host
