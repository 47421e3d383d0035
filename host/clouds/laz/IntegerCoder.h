#pragma once

#include "host/clouds/laz/SymbolModel.h"

#include <array>
#include <bit>
#include <cstdint>

namespace Zamt::Host::Laz {

/// Codes integers of `Width` bits given predictions of them: of the difference first its class k, the number
/// of its significant bits, by context, then its place within the class.
template <class Coder, unsigned Width, unsigned Contexts>
class IntegerCoder {
public:
  void reset() {
    for (auto& model : classes_) model.reset();
    for (auto& model : places_) model.reset();
    lowest_ = {};
  }

  /// The number, which is `real` when encoding. Only its lowest `Width` bits count; of 32 bits all do.
  [[gnu::always_inline]] std::uint32_t code(Coder& coder, std::uint32_t predicted, std::uint32_t real,
                                            unsigned context) {
    if constexpr (Coder::encodes) {
      encode(coder, difference(real - predicted), context);
      return real;
    } else {
      return (predicted + decode(coder, context)) & mask;
    }
  }

  /// The class of the last number.
  unsigned k() const { return lastClass_; }

private:
  static constexpr unsigned greatestPlaced = Width == 32 ? 31 : Width;
  static constexpr std::uint32_t mask = Width == 32 ? 0xFFFFFFFF : (1U << (Width % 32)) - 1;

  /// Modulo 2^Width into the signed range of that width.
  static std::int32_t difference(std::uint32_t d) {
    constexpr unsigned unused = 32 - Width;
    return static_cast<std::int32_t>(d << unused) >> unused;
  }

  [[gnu::always_inline]] std::uint32_t decode(Coder& coder, unsigned context) {
    const unsigned k = coder.symbol(classes_[context]);
    lastClass_ = k;
    if (k == 0) return coder.bit(lowest_) ? 1 : 0;
    if (Width == 32 && k == 32) return 0x80000000;
    auto& model = places_[k - 1];
    model.prepare(k < 8 ? 1U << k : 256);
    std::uint32_t place = coder.preparedSymbol(model);
    if (k > 8) place = place << (k - 8) | coder.raw(k - 8);
    // The upper half of the class holds the positive differences; no branch, since half of them are.
    const std::uint32_t isPositive = place >> (k - 1);
    return place + 1 - ((1U << k) & (isPositive - 1));
  }

  [[gnu::always_inline]] void encode(Coder& coder, std::int32_t d, unsigned context) {
    const auto bits = static_cast<std::uint32_t>(d);
    const auto k = static_cast<unsigned>(std::bit_width(d <= 0 ? 0 - bits : bits - 1));
    lastClass_ = k;
    coder.symbol(classes_[context], k);
    if (k == 0) {
      coder.bit(lowest_, d != 0);
    } else if (k < 32) {
      const std::uint32_t place = d > 0 ? bits - 1 : bits + (1U << k) - 1;
      auto& model = places_[k - 1];
      model.prepare(k < 8 ? 1U << k : 256);
      coder.preparedSymbol(model, k > 8 ? place >> (k - 8) : place);
      if (k > 8) coder.raw(k - 8, place & ((1U << (k - 8)) - 1));
    }
  }

  std::array<typename Coder::template Model<Width + 1>, Contexts> classes_;
  std::array<typename Coder::template Model<256>, greatestPlaced> places_;
  BitModel lowest_;
  unsigned lastClass_ = 0;
};

} // namespace Zamt::Host::Laz
