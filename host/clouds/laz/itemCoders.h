#pragma once

#include "host/clouds/laz/IntegerCoder.h"
#include "host/clouds/laz/bytes.h"

#include <array>
#include <cstdint>

// The items that stand behind the core of a point, as both the pointwise and the layered streams code them:
// given the last value, `code` codes `now`, which decoding fills in.

namespace Zamt::Host::Laz {

/// Codes bytes as differences to the last ones, each where a bit of a symbol says that it differs.
template <class Coder>
class ByteDifferences {
public:
  using Model = typename Coder::template Model<256>;

  static unsigned clamp(int value) { return static_cast<unsigned>(std::clamp(value, 0, 255)); }

  [[gnu::always_inline]] static unsigned code(Coder& coder, Model& model, unsigned expected, unsigned real) {
    return (expected + coder.symbol(model, (real - expected) & 255)) & 255;
  }
};

struct Colour {
  std::array<std::uint16_t, 3> channels{};
  friend bool operator==(const Colour&, const Colour&) = default;
};

template <class Coder>
class ColourCoder {
public:
  void reset() {
    used_.reset();
    for (auto& model : models_) model.reset();
  }

  /// False if the colour is grey and the same as the last one.
  bool code(Coder& coder, const Colour& last, Colour& now) {
    unsigned used = 0;
    if constexpr (Coder::encodes) used = differences(last, now);
    const unsigned symbol = coder.symbol(used_, used);
    std::array<Bytes, 3> from{split(last, 0), split(last, 1), split(last, 2)};
    std::array<Bytes, 3> to{split(now, 0), split(now, 1), split(now, 2)};
    if constexpr (!Coder::encodes) to = from;
    for (unsigned half = 0; half < 2; ++half)
      if (symbol >> half & 1) to[0][half] = Way::code(coder, models_[half], from[0][half], to[0][half]);
    if (symbol & 64) {
      for (unsigned half = 0; half < 2; ++half) codeOthers(coder, symbol, half, from, to);
    } else {
      to[1] = to[2] = to[0];
    }
    if constexpr (!Coder::encodes)
      for (unsigned i = 0; i < 3; ++i) now.channels[i] = static_cast<std::uint16_t>(to[i][0] | to[i][1] << 8);
    return symbol != 0;
  }

private:
  using Way = ByteDifferences<Coder>;
  using Bytes = std::array<unsigned, 2>; ///< The low byte, then the high one.

  static Bytes split(const Colour& colour, unsigned i) {
    const unsigned value = colour.channels[i];
    return {value & 255, value >> 8};
  }

  static unsigned differences(const Colour& last, const Colour& now) {
    unsigned symbol = 0;
    for (unsigned i = 0; i < 3; ++i) {
      const unsigned changed = last.channels[i] ^ now.channels[i];
      symbol |= ((changed & 255 ? 1U : 0U) | (changed >> 8 ? 2U : 0U)) << (2 * i);
    }
    const bool grey = now.channels[0] == now.channels[1] && now.channels[0] == now.channels[2];
    return symbol | (grey ? 0 : 64);
  }

  /// One half of green and blue, which are expected to change as red did.
  void codeOthers(Coder& coder, unsigned symbol, unsigned half, const std::array<Bytes, 3>& from,
                  std::array<Bytes, 3>& to) {
    const auto old = [&](unsigned i) { return static_cast<int>(from[i][half]); };
    const int red = static_cast<int>(to[0][half]) - old(0);
    if (symbol >> (2 + half) & 1)
      to[1][half] = Way::code(coder, models_[2 + half], Way::clamp(old(1) + red), to[1][half]);
    else
      to[1][half] = from[1][half];
    if (symbol >> (4 + half) & 1) {
      const int both = (red + static_cast<int>(to[1][half]) - old(1)) / 2;
      to[2][half] = Way::code(coder, models_[4 + half], Way::clamp(old(2) + both), to[2][half]);
    } else {
      to[2][half] = from[2][half];
    }
  }

  typename Coder::template Model<128> used_;
  std::array<typename Way::Model, 6> models_;
};

template <class Coder>
class InfraredCoder {
public:
  void reset() {
    used_.reset();
    for (auto& model : models_) model.reset();
  }

  /// False if it is the same as the last one.
  bool code(Coder& coder, const std::uint16_t& last, std::uint16_t& now) {
    const unsigned changed = last ^ now;
    const unsigned symbol = coder.symbol(used_, (changed & 255 ? 1U : 0U) | (changed >> 8 ? 2U : 0U));
    unsigned low = last & 255U;
    unsigned high = last >> 8U;
    if (symbol & 1) low = ByteDifferences<Coder>::code(coder, models_[0], low, now & 255U);
    if (symbol & 2) high = ByteDifferences<Coder>::code(coder, models_[1], high, now >> 8U);
    now = static_cast<std::uint16_t>(low | high << 8);
    return symbol != 0;
  }

private:
  typename Coder::template Model<4> used_;
  std::array<typename ByteDifferences<Coder>::Model, 2> models_;
};

/// u8 descriptor index, u64 offset, u32 size, then four floats whose bits are coded as numbers.
using WavePacket = std::array<std::byte, 29>;

template <class Coder>
class WavePacketCoder {
public:
  void reset() {
    index_.reset();
    for (auto& model : ways_) model.reset();
    steps_.reset();
    sizes_.reset();
    locations_.reset();
    directions_.reset();
    lastWay_ = 0;
    lastStep_ = 0;
  }

  /// False if all bytes are those of the last one.
  bool code(Coder& coder, const WavePacket& last, WavePacket& now) {
    const bool differs = Coder::encodes && last != now;
    const auto byte = std::to_integer<unsigned>(now[0]);
    now[0] = static_cast<std::byte>(coder.symbol(index_, byte));
    codeOffset(coder, last, now);
    codeNumber(coder, sizes_, 0, 9, last, now);
    codeNumber(coder, locations_, 0, 13, last, now);
    for (unsigned axis = 0; axis < 3; ++axis) codeNumber(coder, directions_, axis, 17 + 4 * axis, last, now);
    return differs;
  }

private:
  enum Way : unsigned { Same, Behind, Step, Anywhere };

  template <class Numbers>
  static void codeNumber(Coder& coder, Numbers& numbers, unsigned context, std::size_t at,
                         const WavePacket& last, WavePacket& now) {
    const auto predicted = load<std::uint32_t>(&last[at]);
    store(&now[at], numbers.code(coder, predicted, load<std::uint32_t>(&now[at]), context));
  }

  void codeOffset(Coder& coder, const WavePacket& last, WavePacket& now) {
    const auto from = load<std::uint64_t>(&last[1]);
    const auto size = load<std::uint32_t>(&last[9]);
    const std::uint64_t difference = load<std::uint64_t>(&now[1]) - from;
    lastWay_ = coder.symbol(ways_[lastWay_], Coder::encodes ? wayOf(difference, size) : 0U);
    std::uint64_t to = from;
    if (lastWay_ == Behind) to += size;
    if (lastWay_ == Step) {
      lastStep_ = steps_.code(coder, lastStep_, static_cast<std::uint32_t>(difference), 0);
      to += static_cast<std::uint64_t>(static_cast<std::int64_t>(static_cast<std::int32_t>(lastStep_)));
    }
    if (lastWay_ == Anywhere) {
      const std::uint64_t low = coder.raw(32, load<std::uint32_t>(&now[1]));
      to = std::uint64_t{coder.raw(32, load<std::uint32_t>(&now[5]))} << 32 | low;
    }
    store(&now[1], to);
  }

  static unsigned wayOf(std::uint64_t difference, std::uint32_t size) {
    const auto signedDifference = static_cast<std::int64_t>(difference);
    if (difference == 0) return Same;
    if (difference == size && size < 0x80000000U) return Behind;
    return signedDifference == static_cast<std::int32_t>(signedDifference) ? Step : Anywhere;
  }

  typename Coder::template Model<256> index_;
  std::array<typename Coder::template Model<4>, 4> ways_;
  IntegerCoder<Coder, 32, 1> steps_;
  IntegerCoder<Coder, 32, 1> sizes_;
  IntegerCoder<Coder, 32, 1> locations_;
  IntegerCoder<Coder, 32, 3> directions_;
  unsigned lastWay_ = 0;
  std::uint32_t lastStep_ = 0;
};

} // namespace Zamt::Host::Laz
