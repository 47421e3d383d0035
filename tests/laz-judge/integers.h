#pragma once

#include "tests/laz-judge/coder.h"

#include <limits>

namespace Zamt::Testing::Laz {

/// Codes integers of `Width` bits by their difference from a prediction: first its magnitude, then its place
/// among the differences of that magnitude.
template <unsigned Width, unsigned Contexts>
class IntegerModel {
public:
  unsigned k = 0; ///< magnitude of the last difference, which other fields take as context

  template <class Coder>
  std::int32_t code(Coder& coder, unsigned context, std::int32_t predicted, std::int32_t value) {
    std::int32_t difference = 0;
    if constexpr (Coder::encodes) {
      difference = folded(static_cast<std::uint32_t>(value) - static_cast<std::uint32_t>(predicted));
      const auto size = static_cast<std::uint32_t>(difference);
      k = static_cast<unsigned>(std::bit_width(difference > 0 ? size - 1 : 0 - size));
    }
    k = coder.symbol(magnitudes[context], k);
    if (k == 0)
      difference = static_cast<std::int32_t>(coder.bit(first, static_cast<unsigned>(difference)));
    else if (k < 32)
      difference = place(coder, difference);
    else
      difference = std::numeric_limits<std::int32_t>::min();
    return folded(static_cast<std::uint32_t>(predicted) + static_cast<std::uint32_t>(difference));
  }

private:
  static std::int32_t folded(std::uint32_t number) {
    return static_cast<std::int32_t>(number << (32 - Width)) >> (32 - Width);
  }

  template <class Coder>
  std::int32_t place(Coder& coder, std::int32_t difference) {
    const std::uint32_t span = (1U << k) - 1;
    std::uint32_t u = static_cast<std::uint32_t>(difference) + (difference > 0 ? 0xFFFFFFFF : span);
    if (k <= 8) {
      u = coder.symbol(places[k], u, 1U << k);
    } else {
      const unsigned rest = k - 8;
      const std::uint32_t high = coder.symbol(places[k], u >> rest);
      u = high << rest | coder.raw(rest, u & ((1U << rest) - 1));
    }
    return static_cast<std::int32_t>(u > span / 2 ? u + 1 : u - span);
  }

  std::array<SymbolModel<Width + 1>, Contexts> magnitudes;
  BitModel first;
  std::array<SymbolModel<256>, std::min(Width, 31U) + 1> places; // by magnitude; none at 0
};

/// The median of the last few differences, to which each new one moves it a little.
class Median {
public:
  std::int32_t value() const { return sorted[2]; }

  void push(std::int32_t x) {
    const std::int32_t middle = sorted[2];
    std::size_t i = up ? 4 : 0;
    if (up) {
      for (; i > 0 && sorted[i - 1] > x; --i) sorted[i] = sorted[i - 1];
      if (x >= middle) up = false;
    } else {
      for (; i < 4 && sorted[i + 1] < x; ++i) sorted[i] = sorted[i + 1];
      if (x <= middle) up = true;
    }
    sorted[i] = x;
  }

private:
  std::array<std::int32_t, 5> sorted{};
  bool up = true;
};

} // namespace Zamt::Testing::Laz
