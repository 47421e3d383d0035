#pragma once

#include <algorithm>
#include <array>
#include <cstdint>

namespace Zamt::Host::Laz {

/// The middle of five sorted numbers, of which each new one drives out the largest or the smallest by turns.
/// Which of them goes does not depend on the new number.
class MovingMedian {
public:
  std::int32_t median() const { return sorted[2]; }

  void push(std::int32_t x) {
    const std::int32_t middle = sorted[2];
    const unsigned first = dropsLargest ? 0 : 1;
    std::int32_t carried = x;
    std::array<std::int32_t, 4> kept{sorted[first], sorted[first + 1], sorted[first + 2], sorted[first + 3]};
    for (unsigned i = 4; i > 0; --i) {
      sorted[i] = std::max(kept[i - 1], carried);
      carried = std::min(kept[i - 1], carried);
    }
    sorted[0] = carried;
    dropsLargest = dropsLargest ? x < middle : x <= middle;
  }

private:
  std::array<std::int32_t, 5> sorted{};
  bool dropsLargest = true;
};

} // namespace Zamt::Host::Laz
