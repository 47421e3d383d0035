#pragma once

#include "tests/laz-judge/integers.h"

#include <vector>

// The items that pointwise and layered chunks have in common. `last` is the item that predicts, `now` the one
// that is coded: an Encoder finds it there, a Decoder leaves it there.

namespace Zamt::Testing::Laz {

using Byte = std::uint8_t;

inline bool fitsInt32(std::uint64_t difference) {
  const auto number = static_cast<std::int64_t>(difference);
  return number == static_cast<std::int32_t>(number);
}

inline unsigned contextOfY(bool single, unsigned kx) { return (single ? 1 : 0) + (kx < 20 ? kx & ~1U : 20); }

inline unsigned contextOfZ(bool single, unsigned kx, unsigned ky) {
  const unsigned half = (kx + ky) / 2;
  return (single ? 1 : 0) + (half < 18 ? half & ~1U : 18);
}

/// GPS times as 64-bit patterns, in up to four interleaved sequences. `SameTime` tells whether there is a
/// symbol for an unchanged time.
template <bool SameTime>
class TimeModel {
public:
  TimeModel() = default;
  explicit TimeModel(std::uint64_t start) : times{start} {}

  template <class Coder>
  std::uint64_t code(Coder& coder, std::uint64_t time, bool& broken) {
    // A switch leads to a sequence that needs none.
    for (int tries = 0; tries < 2; ++tries) {
      const unsigned action = codeAction(coder, time);
      if (action < same) {
        times[current] += static_cast<std::uint64_t>(std::int64_t{codeDifference(coder, action, time)});
      } else if (action == fresh) {
        startSequence(coder, time);
      } else if (action > fresh) {
        current = (current + action - fresh) & 3;
        continue;
      }
      return times[current];
    }
    broken = true;
    return times[current];
  }

private:
  // What can be done, in the numbering of the symbols of `multiples`; below `same` are the differences.
  static constexpr unsigned same = 511, fresh = 512;
  static constexpr unsigned gap = SameTime ? 0 : 1; // the numbers above `same` move down where it is missing

  template <class Coder>
  unsigned codeAction(Coder& coder, std::uint64_t time) {
    unsigned action = Coder::encodes ? choose(time) : 0;
    if (differences[current] == 0) {
      const unsigned symbol = action < same ? 1 : action == same ? 0 : action - 510;
      const unsigned coded = coder.symbol(firsts, symbol - gap) + gap;
      return coded == 1 ? 1 : coded == 0 ? same : coded + 510;
    }
    action = coder.symbol(multiples, action < same ? action : action - gap);
    return action < same ? action : action + gap;
  }

  unsigned choose(std::uint64_t time) const {
    if (SameTime && time == times[current]) return same;
    if (fitsInt32(time - times[current])) return multiple(time - times[current]);
    for (unsigned i = 1; i < 4; ++i)
      if (fitsInt32(time - times[(current + i) & 3])) return fresh + i;
    return fresh;
  }

  // The division is one of floats because other encoders divide so.
  unsigned multiple(std::uint64_t difference) const {
    if (differences[current] == 0) return 1;
    const float quotient =
        static_cast<float>(static_cast<std::int64_t>(difference)) / static_cast<float>(differences[current]);
    const double bounded = std::clamp(static_cast<double>(quotient), -1000.0, 1000.0);
    const int factor = static_cast<int>(bounded + (bounded < 0 ? -0.5 : 0.5));
    if (factor >= 0) return static_cast<unsigned>(std::min(factor, 500));
    return static_cast<unsigned>(500 + std::min(-factor, 10));
  }

  template <class Coder>
  std::int32_t codeDifference(Coder& coder, unsigned action, std::uint64_t time) {
    std::int32_t& reference = differences[current];
    const auto real = static_cast<std::int32_t>(static_cast<std::uint32_t>(time - times[current]));
    if (reference == 0) {
      reference = steps.code(coder, 0, 0, real);
      extremes[current] = 0;
      return reference;
    }
    const int factor = action <= 500 ? static_cast<int>(action) : 500 - static_cast<int>(action);
    const std::uint32_t predicted =
        static_cast<std::uint32_t>(factor) * static_cast<std::uint32_t>(reference);
    const std::int32_t read =
        steps.code(coder, contextOf(action), static_cast<std::int32_t>(predicted), real);
    if (action == 1) extremes[current] = 0;
    if ((action == 0 || action == 500 || action == 510) && ++extremes[current] > 3) {
      reference = read;
      extremes[current] = 0;
    }
    return read;
  }

  static unsigned contextOf(unsigned action) {
    if (action == 0) return 7;
    if (action == 1) return 1;
    if (action < 10) return 2;
    if (action < 500) return 3;
    return action == 500 ? 4 : action < 510 ? 5 : 6;
  }

  template <class Coder>
  void startSequence(Coder& coder, std::uint64_t time) {
    const auto upper = [](std::uint64_t bits) { return static_cast<std::int32_t>(bits >> 32); };
    const std::int32_t high = steps.code(coder, 8, upper(times[current]), upper(time));
    const std::uint32_t low = coder.raw(32, static_cast<std::uint32_t>(time));
    current = newest = (newest + 1) & 3;
    times[current] = std::uint64_t{static_cast<std::uint32_t>(high)} << 32 | low;
    differences[current] = 0;
    extremes[current] = 0;
  }

  std::array<std::uint64_t, 4> times{};
  std::array<std::int32_t, 4> differences{};
  std::array<unsigned, 4> extremes{};
  unsigned current = 0, newest = 0;
  SymbolModel<6 - gap> firsts;
  SymbolModel<516 - gap> multiples;
  IntegerModel<32, 9> steps;
};

/// Changed bytes of two-byte colours: a set of changed bytes, then what differs.
class ColourModel {
public:
  /// Gives back the set of changed bytes with the mark of a colour that is not grey.
  template <class Coder>
  unsigned code(Coder& coder, const Byte* last, Byte* now) {
    unsigned changed = 0;
    if constexpr (Coder::encodes) {
      for (unsigned i = 0; i < 6; ++i) changed |= now[i] != last[i] ? 1U << i : 0;
      if (std::memcmp(now, now + 2, 2) != 0 || std::memcmp(now, now + 4, 2) != 0) changed |= 64;
    }
    changed = coder.symbol(used, changed);
    const auto codeByte = [&](unsigned i, int predicted) {
      if ((changed >> i & 1) == 0)
        now[i] = last[i];
      else
        now[i] = static_cast<Byte>(
            predicted + static_cast<int>(coder.symbol(bytes[i], static_cast<Byte>(now[i] - predicted))));
    };
    codeByte(0, last[0]);
    codeByte(1, last[1]);
    for (unsigned half = 0; half < 2; ++half) {
      Byte* value = now + half;
      const Byte* before = last + half;
      if ((changed & 64) == 0) {
        value[4] = value[2] = value[0];
        continue;
      }
      const int red = value[0] - before[0];
      codeByte(2 + half, std::clamp(before[2] + red, 0, 255));
      codeByte(4 + half, std::clamp(before[4] + (red + value[2] - before[2]) / 2, 0, 255));
    }
    return changed;
  }

private:
  SymbolModel<128> used;
  std::array<SymbolModel<256>, 6> bytes;
};

class WavePacketModel {
public:
  template <class Coder>
  void code(Coder& coder, const Byte* last, Byte* now) {
    now[0] = static_cast<Byte>(coder.symbol(index, now[0]));
    const auto size = numberAt<std::uint32_t>(last, 9);
    const auto before = numberAt<std::uint64_t>(last, 1);
    auto offset = numberAt<std::uint64_t>(now, 1);
    const std::uint64_t jump = offset - before;
    unsigned way = 0;
    if constexpr (Coder::encodes)
      way = jump == 0 ? 0 : jump == size && size < 0x80000000 ? 1 : fitsInt32(jump) ? 2 : 3;
    way = lastWay = coder.symbol(ways[lastWay], way);
    if (way == 0) offset = before;
    if (way == 1) offset = before + size;
    if (way == 2) {
      lastJump = jumps.code(coder, 0, lastJump, static_cast<std::int32_t>(static_cast<std::uint32_t>(jump)));
      offset = before + static_cast<std::uint64_t>(std::int64_t{lastJump});
    }
    if (way == 3) {
      const std::uint64_t low = coder.raw(32, static_cast<std::uint32_t>(offset));
      offset = std::uint64_t{coder.raw(32, static_cast<std::uint32_t>(offset >> 32))} << 32 | low;
    }
    putNumber(now, 1, offset);
    codeNumber(coder, sizes, 0, last, now, 9);
    codeNumber(coder, returnPoints, 0, last, now, 13);
    for (unsigned axis = 0; axis < 3; ++axis) codeNumber(coder, directions, axis, last, now, 17 + 4 * axis);
  }

private:
  template <class Coder, class Model>
  static void codeNumber(Coder& coder, Model& model, unsigned context, const Byte* last, Byte* now,
                         std::size_t at) {
    const auto predicted = numberAt<std::int32_t>(last, at);
    putNumber(now, at, model.code(coder, context, predicted, numberAt<std::int32_t>(now, at)));
  }

  unsigned lastWay = 0;
  std::int32_t lastJump = 0;
  SymbolModel<256> index;
  std::array<SymbolModel<4>, 4> ways;
  IntegerModel<32, 1> jumps, sizes, returnPoints;
  IntegerModel<32, 3> directions;
};

/// One byte, by its difference from the last.
struct ByteModel {
  SymbolModel<256> differences;

  template <class Coder>
  Byte code(Coder& coder, Byte last, Byte now) {
    return static_cast<Byte>(last + coder.symbol(differences, static_cast<Byte>(now - last)));
  }
};

} // namespace Zamt::Testing::Laz
