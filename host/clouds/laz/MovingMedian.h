#pragma once

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
    const unsigned first = 1 - dropsLargest;
    const std::array<std::int32_t, 4> kept{sorted[first], sorted[first + 1], sorted[first + 2],
                                           sorted[first + 3]};
    std::int32_t carried = x;
    for (unsigned i = 4; i > 0; --i) {
      // by arithmetic, since a compiler makes branches of a maximum that can't be guessed
      const std::int32_t isLess = -static_cast<std::int32_t>(kept[i - 1] < carried);
      const std::int32_t difference = (kept[i - 1] ^ carried) & isLess;
      sorted[i] = kept[i - 1] ^ difference;
      carried ^= difference;
    }
    sorted[0] = carried;
    dropsLargest = (x < middle ? 1U : 0U) | ((1 - dropsLargest) & (x == middle ? 1U : 0U));
  }

private:
  std::array<std::int32_t, 5> sorted{};
  unsigned dropsLargest = 1; ///< Or 0.
};

} // namespace Zamt::Host::Laz
