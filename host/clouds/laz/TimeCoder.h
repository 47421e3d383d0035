#pragma once

#include "host/clouds/laz/IntegerCoder.h"

#include <array>
#include <cmath>
#include <cstdint>

namespace Zamt::Host::Laz {

/// How the symbols of a time are numbered. In layers "the same time as before" needs none.
struct TimeSymbols {
  unsigned small;     ///< Of those without a difference to go by: a small step,
  unsigned fresh;     ///< a sequence that starts anew; behind it three that change the sequence.
  unsigned multiples; ///< Of those with one: behind all multiples of it, the same time where it has a symbol,
  unsigned freshBehind; ///< a sequence that starts anew; behind it three that change the sequence.
};
inline constexpr TimeSymbols pointwiseTime{1, 2, 511, 512};
inline constexpr TimeSymbols layeredTime{0, 1, 511, 511};

/// Codes GPS times as the bits of their doubles. Four sequences of times are kept, so that interleaved
/// flight lines do not disturb each other; each has the difference that steps are expected to be a multiple
/// of.
template <class Coder, bool Layered>
class TimeCoder {
public:
  void reset(std::uint64_t first) {
    sequences_ = {};
    sequences_[0].time = first;
    current_ = newest_ = 0;
    starts_.reset();
    multiples_.reset();
    steps_.reset();
  }

  std::uint64_t last() const { return sequences_[current_].time; }

  /// The time, which is `time` when encoding. Layers code only times that differ from `last`.
  [[gnu::always_inline]] std::uint64_t code(Coder& coder, std::uint64_t time) {
    if constexpr (Coder::encodes) {
      write(coder, time);
    } else {
      // An encoder changes the sequence once in a point; broken bytes could go on for ever.
      constexpr unsigned mostChanges = 8;
      unsigned changes = 0;
      while (readChange(coder)) {
        if (++changes < mostChanges) continue;
        coder.markBroken();
        break;
      }
    }
    return last();
  }

private:
  static constexpr TimeSymbols symbols = Layered ? layeredTime : pointwiseTime;
  static constexpr unsigned greatestMultiple = 500;
  static constexpr unsigned leastMultiple = 510; ///< The symbol of ten times backwards and more.

  struct Sequence {
    std::uint64_t time = 0;
    std::int32_t step = 0; ///< The difference to go by; 0 when there is none yet.
    unsigned extremes = 0; ///< Steps in a row that it did not predict.
  };

  [[gnu::always_inline]] std::int32_t codeStep(Coder& coder, std::int32_t factor, std::int32_t real,
                                               unsigned context) {
    const auto predicted =
        static_cast<std::uint32_t>(factor) * static_cast<std::uint32_t>(sequences_[current_].step);
    return static_cast<std::int32_t>(
        steps_.code(coder, predicted, static_cast<std::uint32_t>(real), context));
  }

  void advance(std::int32_t step) {
    sequences_[current_].time += static_cast<std::uint64_t>(static_cast<std::int64_t>(step));
  }

  void noteExtreme(std::int32_t step) {
    Sequence& sequence = sequences_[current_];
    if (++sequence.extremes > 3) {
      sequence.step = step;
      sequence.extremes = 0;
    }
  }

  [[gnu::always_inline]] void codeFirstStep(Coder& coder, std::int32_t real) {
    const std::int32_t step = codeStep(coder, 0, real, 0);
    sequences_[current_].step = step;
    sequences_[current_].extremes = 0;
    advance(step);
  }

  /// A step whose quotient by the expected one has the given symbol.
  [[gnu::always_inline]] void codeMultiple(Coder& coder, unsigned symbol, std::int32_t real) {
    struct Way {
      std::int32_t factor;
      unsigned context;
    };
    const auto number = static_cast<std::int32_t>(symbol);
    const Way way = symbol == 0                  ? Way{0, 7}
                    : symbol == 1                ? Way{1, 1}
                    : symbol < 10                ? Way{number, 2}
                    : symbol < greatestMultiple  ? Way{number, 3}
                    : symbol == greatestMultiple ? Way{number, 4}
                    : symbol < leastMultiple     ? Way{500 - number, 5}
                                                 : Way{-10, 6};
    const std::int32_t step = codeStep(coder, way.factor, real, way.context);
    advance(step);
    if (symbol == 0 || symbol == greatestMultiple || symbol == leastMultiple) noteExtreme(step);
    if (symbol == 1) sequences_[current_].extremes = 0;
  }

  [[gnu::always_inline]] void codeFresh(Coder& coder, std::uint64_t real) {
    const auto upper = static_cast<std::uint32_t>(last() >> 32);
    const std::uint64_t high = steps_.code(coder, upper, static_cast<std::uint32_t>(real >> 32), 8);
    const std::uint32_t low = coder.raw(32, static_cast<std::uint32_t>(real));
    newest_ = (newest_ + 1) & 3;
    current_ = newest_;
    sequences_[current_] = {high << 32 | low, 0, 0};
  }

  /// One symbol and what it asks for. True if it only changed the sequence, so that the time follows.
  [[gnu::always_inline]] bool readChange(Coder& coder) {
    const bool hasStep = sequences_[current_].step != 0;
    const unsigned symbol = hasStep ? coder.symbol(multiples_) : coder.symbol(starts_);
    const unsigned fresh = hasStep ? symbols.freshBehind : symbols.fresh;
    if (symbol > fresh) {
      current_ = (current_ + symbol - fresh) & 3;
      return true;
    }
    if (symbol == fresh)
      codeFresh(coder, 0);
    else if (hasStep && symbol < symbols.multiples)
      codeMultiple(coder, symbol, 0);
    else if (!hasStep && symbol == symbols.small)
      codeFirstStep(coder, 0);
    return false;
  }

  void writeSymbol(Coder& coder, bool hasStep, unsigned withStep, unsigned without) {
    if (hasStep)
      coder.symbol(multiples_, withStep);
    else
      coder.symbol(starts_, without);
  }

  static bool isStep(std::uint64_t difference) {
    const auto d = static_cast<std::int64_t>(difference);
    return d == static_cast<std::int32_t>(d);
  }

  /// The symbol of the multiple that `step` is nearest to. Divided as 32-bit floats, halves away from zero,
  /// since that is how the bytes come out that other writers make.
  static unsigned multipleSymbol(std::int32_t step, std::int32_t expected) {
    const float quotient = static_cast<float>(step) / static_cast<float>(expected);
    const double rounded = std::trunc(static_cast<double>(quotient) + (quotient >= 0 ? 0.5 : -0.5));
    if (rounded >= greatestMultiple) return greatestMultiple;
    if (rounded <= -10) return leastMultiple;
    const int factor = static_cast<int>(rounded);
    return static_cast<unsigned>(factor >= 0 ? factor : 500 - factor);
  }

  void write(Coder& coder, std::uint64_t time) {
    if (!isStep(time - last())) changeSequence(coder, time);
    const std::uint64_t difference = time - last();
    const bool hasStep = sequences_[current_].step != 0;
    if (!isStep(difference)) {
      writeSymbol(coder, hasStep, symbols.freshBehind, symbols.fresh);
      codeFresh(coder, time);
    } else if (!Layered && difference == 0) {
      writeSymbol(coder, hasStep, 511, 0);
    } else {
      writeStep(coder, static_cast<std::int32_t>(static_cast<std::int64_t>(difference)));
    }
  }

  void writeStep(Coder& coder, std::int32_t step) {
    if (sequences_[current_].step == 0) {
      coder.symbol(starts_, symbols.small);
      codeFirstStep(coder, step);
      return;
    }
    const unsigned symbol = multipleSymbol(step, sequences_[current_].step);
    coder.symbol(multiples_, symbol);
    codeMultiple(coder, symbol, step);
  }

  /// Goes to the next sequence from which `time` is a small step, if there is one.
  void changeSequence(Coder& coder, std::uint64_t time) {
    for (unsigned i = 1; i < 4; ++i) {
      const unsigned other = (current_ + i) & 3;
      if (!isStep(time - sequences_[other].time)) continue;
      writeSymbol(coder, sequences_[current_].step != 0, symbols.freshBehind + i, symbols.fresh + i);
      current_ = other;
      return;
    }
  }

  std::array<Sequence, 4> sequences_{};
  unsigned current_ = 0;
  unsigned newest_ = 0;
  typename Coder::template Model<Layered ? 5 : 6> starts_;
  typename Coder::template Model<Layered ? 515 : 516> multiples_;
  IntegerCoder<Coder, 32, 9> steps_;
};

} // namespace Zamt::Host::Laz
