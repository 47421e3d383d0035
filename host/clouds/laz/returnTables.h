#pragma once

#include <algorithm>
#include <array>
#include <cstdint>

namespace Zamt::Host::Laz {

/// What the return number r and the number of returns n of a point mean to the coding of its other fields.
struct ReturnContext {
  std::uint8_t map = 0;    ///< The class of (n, r) that the medians of X and Y go by.
  std::uint8_t level = 0;  ///< |n - r|, at most 7.
  std::uint8_t single = 0; ///< 1 if n is 1.
  std::uint8_t place = 0;  ///< 2 if r is 1, and 1 if r is n or more; so 3 is a single return.
};

/// By the byte of formats 0 to 5: r in bits 0 to 2, n in bits 3 to 5.
constexpr std::array<ReturnContext, 256> returnsOfThreeBits() {
  constexpr std::array<std::array<std::uint8_t, 8>, 8> map{{{15, 14, 13, 12, 11, 10, 9, 8},
                                                            {14, 0, 1, 3, 6, 10, 10, 9},
                                                            {13, 1, 2, 4, 7, 11, 11, 10},
                                                            {12, 3, 4, 5, 8, 12, 12, 11},
                                                            {11, 6, 7, 8, 9, 13, 13, 12},
                                                            {10, 10, 11, 12, 13, 14, 14, 13},
                                                            {9, 10, 11, 12, 13, 14, 15, 14},
                                                            {8, 9, 10, 11, 12, 13, 14, 15}}};
  std::array<ReturnContext, 256> contexts{};
  for (unsigned byte = 0; byte < contexts.size(); ++byte) {
    const unsigned r = byte & 7;
    const unsigned n = byte >> 3 & 7;
    contexts[byte].map = map[n][r];
    contexts[byte].level = static_cast<std::uint8_t>(std::max(n, r) - std::min(n, r));
    contexts[byte].single = n == 1 ? 1 : 0;
  }
  return contexts;
}

/// The classes of (n, r) in formats 6 to 10, of which only the smaller and the greater of the two matter.
constexpr std::uint8_t mapOfFourBits(unsigned smaller, unsigned greater) {
  constexpr std::array<std::uint8_t, 16> withZero{0, 1, 2, 3, 4, 5, 3, 4, 4, 5, 5, 5, 5, 5, 5, 5};
  switch (smaller) {
  case 0: return withZero[greater];
  case 1: return greater == 1 ? 0 : greater == 2 ? 1 : 3;
  case 2: return greater == 2 ? 2 : greater <= 10 ? 4 : 3;
  default: return greater == smaller || (greater == smaller + 1 && smaller >= 11) ? 5 : 4;
  }
}

/// By the byte of formats 6 to 10: r in bits 0 to 3, n in bits 4 to 7.
constexpr std::array<ReturnContext, 256> returnsOfFourBits() {
  std::array<ReturnContext, 256> contexts{};
  for (unsigned byte = 0; byte < contexts.size(); ++byte) {
    const unsigned r = byte & 15;
    const unsigned n = byte >> 4;
    const unsigned smaller = std::min(n, r);
    const unsigned greater = std::max(n, r);
    contexts[byte].map = mapOfFourBits(smaller, greater);
    contexts[byte].level = static_cast<std::uint8_t>(std::min(greater - smaller, 7U));
    contexts[byte].single = n == 1 ? 1 : 0;
    contexts[byte].place = static_cast<std::uint8_t>((r == 1 ? 2 : 0) + (r >= n ? 1 : 0));
  }
  return contexts;
}

/// The context of Y, given k of X.
inline unsigned contextOfY(unsigned single, unsigned kx) { return single + (kx < 20 ? kx & ~1U : 20); }

/// The context of Z, given k of X and k of Y.
inline unsigned contextOfZ(unsigned single, unsigned kx, unsigned ky) {
  const unsigned half = (kx + ky) / 2;
  return single + (half < 18 ? half & ~1U : 18);
}

} // namespace Zamt::Host::Laz
