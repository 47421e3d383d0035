#pragma once

#include <array>
#include <cstdint>

namespace Zamt::Host::Laz {

/// The middle of five sorted numbers, of which each new one drives out the largest or the smallest by turns.
/// Which of them goes does not depend on the new number.
class MovingMedian {
public:
  std::int32_t median() const { return sorted_[2]; }

  void push(std::int32_t x) {
    const std::int32_t middle = sorted_[2];
    const unsigned first = 1 - dropsLargest_;
    const std::array<std::int32_t, 4> kept{sorted_[first], sorted_[first + 1], sorted_[first + 2],
                                           sorted_[first + 3]};
    std::int32_t carried = x;
    for (unsigned i = 4; i > 0; --i) {
      // by arithmetic, since a compiler makes branches of a maximum that can't be guessed
      const std::int32_t isLess = -static_cast<std::int32_t>(kept[i - 1] < carried);
      const std::int32_t difference = (kept[i - 1] ^ carried) & isLess;
      sorted_[i] = kept[i - 1] ^ difference;
      carried ^= difference;
    }
    sorted_[0] = carried;
    dropsLargest_ = (x < middle ? 1U : 0U) | ((1 - dropsLargest_) & (x == middle ? 1U : 0U));
  }

private:
  std::array<std::int32_t, 5> sorted_{};
  unsigned dropsLargest_ = 1; ///< Or 0.
};

} // namespace Zamt::Host::Laz
