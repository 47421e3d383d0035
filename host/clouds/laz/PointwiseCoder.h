#pragma once

#include "host/clouds/laz/LazFormat.h"
#include "host/clouds/laz/MovingMedian.h"
#include "host/clouds/laz/TimeCoder.h"
#include "host/clouds/laz/itemCoders.h"
#include "host/clouds/laz/returnTables.h"

#include <array>
#include <optional>
#include <vector>

namespace Zamt::Host::Laz {

/// Codes the 20 bytes that points of formats 0 to 5 start with.
template <class Coder>
class Point10Coder {
public:
  void reset() {
    changes_.reset();
    for (auto& model : flagModels_) model.reset();
    for (auto& model : classModels_) model.reset();
    for (auto& model : userModels_) model.reset();
    for (auto& model : angleModels_) model.reset();
    intensities_.reset();
    sources_.reset();
    xs_.reset();
    ys_.reset();
    zs_.reset();
    lastIntensity_ = {};
    lastZ_ = {};
    medianX_ = {};
    medianY_ = {};
  }

  [[gnu::always_inline]] void code(Coder& coder, const std::byte* last, std::byte* now) {
    unsigned wanted = 0;
    if constexpr (Coder::encodes) wanted = differences(last, now);
    const unsigned changed = coder.symbol(changes_, wanted);
    const unsigned flags =
        changed & FlagsDiffer ? codeByte(coder, flagModels_, last, now, 14) : byteAt(last, 14);
    const ReturnContext returns = table[flags];
    store(now + 14, static_cast<std::uint8_t>(flags));
    codeIntensity(coder, changed, returns.map, now);
    codeBytes(coder, changed, flags >> 6 & 1, last, now);
    codePosition(coder, returns, last, now);
  }

private:
  enum Difference : unsigned {
    FlagsDiffer = 32,
    IntensityDiffers = 16,
    ClassDiffers = 8,
    AngleDiffers = 4,
    UserDataDiffers = 2,
    SourceDiffers = 1
  };
  static constexpr auto table = returnsOfThreeBits();
  using ByteModel = typename Coder::template Model<256>;

  static unsigned byteAt(const std::byte* record, std::size_t at) { return load<std::uint8_t>(record + at); }

  unsigned differences(const std::byte* last, const std::byte* now) const {
    const auto differ = [&](std::size_t at, Difference bit) {
      return last[at] != now[at] ? unsigned{bit} : 0U;
    };
    const unsigned map = table[byteAt(now, 14)].map;
    return differ(14, FlagsDiffer) | differ(15, ClassDiffers) | differ(16, AngleDiffers) |
           differ(17, UserDataDiffers) | differ(18, SourceDiffers) | differ(19, SourceDiffers) |
           (load<std::uint16_t>(now + 12) != lastIntensity_[map] ? unsigned{IntensityDiffers} : 0U);
  }

  template <std::size_t Models>
  [[gnu::always_inline]] static unsigned codeByte(Coder& coder, std::array<ByteModel, Models>& models,
                                                  const std::byte* last, const std::byte* now,
                                                  std::size_t at) {
    return coder.symbol(models[byteAt(last, at)], Coder::encodes ? byteAt(now, at) : 0U);
  }

  [[gnu::always_inline]] void codeIntensity(Coder& coder, unsigned changed, unsigned map, std::byte* now) {
    std::uint16_t& intensity = lastIntensity_[map];
    if (changed & IntensityDiffers)
      intensity = static_cast<std::uint16_t>(
          intensities_.code(coder, intensity, load<std::uint16_t>(now + 12), std::min(map, 3U)));
    store(now + 12, intensity);
  }

  [[gnu::always_inline]] void codeBytes(Coder& coder, unsigned changed, unsigned direction,
                                        const std::byte* last, std::byte* now) {
    unsigned classByte = byteAt(last, 15);
    unsigned angle = byteAt(last, 16);
    unsigned user = byteAt(last, 17);
    auto source = load<std::uint16_t>(last + 18);
    if (changed & ClassDiffers) classByte = codeByte(coder, classModels_, last, now, 15);
    if (changed & AngleDiffers)
      angle = ByteDifferences<Coder>::code(coder, angleModels_[direction], angle, byteAt(now, 16));
    if (changed & UserDataDiffers) user = codeByte(coder, userModels_, last, now, 17);
    if (changed & SourceDiffers)
      source = static_cast<std::uint16_t>(sources_.code(coder, source, load<std::uint16_t>(now + 18), 0));
    store(now + 15, static_cast<std::uint8_t>(classByte));
    store(now + 16, static_cast<std::uint8_t>(angle));
    store(now + 17, static_cast<std::uint8_t>(user));
    store(now + 18, source);
  }

  [[gnu::always_inline]] void codePosition(Coder& coder, const ReturnContext& returns, const std::byte* last,
                                           std::byte* now) {
    const auto codeAxis = [&](auto& numbers, MovingMedian& median, unsigned context, std::size_t at) {
      const auto from = load<std::uint32_t>(last + at);
      const std::uint32_t d = numbers.code(coder, static_cast<std::uint32_t>(median.median()),
                                           load<std::uint32_t>(now + at) - from, context);
      median.push(static_cast<std::int32_t>(d));
      store(now + at, from + d);
    };
    codeAxis(xs_, medianX_[returns.map], returns.single, 0);
    codeAxis(ys_, medianY_[returns.map], contextOfY(returns.single, xs_.k()), 4);
    std::uint32_t& z = lastZ_[returns.level];
    z = zs_.code(coder, z, load<std::uint32_t>(now + 8), contextOfZ(returns.single, xs_.k(), ys_.k()));
    store(now + 8, z);
  }

  typename Coder::template Model<64> changes_;
  std::array<ByteModel, 256> flagModels_;
  std::array<ByteModel, 256> classModels_;
  std::array<ByteModel, 256> userModels_;
  std::array<ByteModel, 2> angleModels_;
  IntegerCoder<Coder, 16, 4> intensities_;
  IntegerCoder<Coder, 16, 1> sources_;
  IntegerCoder<Coder, 32, 2> xs_;
  IntegerCoder<Coder, 32, 22> ys_;
  IntegerCoder<Coder, 32, 20> zs_;
  std::array<std::uint16_t, 16> lastIntensity_{};
  std::array<std::uint32_t, 8> lastZ_{};
  std::array<MovingMedian, 16> medianX_;
  std::array<MovingMedian, 16> medianY_;
};

/// Codes the points of chunks whose items share one stream. When encoding, `now` is left as it is.
template <class Coder>
class PointwiseCoder {
public:
  explicit PointwiseCoder(const LazFormat& format) {
    std::size_t offset = 0;
    for (const LazItem& item : format.items) {
      if (item.type == LazItemType::Time11) timeAt_ = offset;
      if (item.type == LazItemType::Colour12) colourAt_ = offset;
      if (item.type == LazItemType::WavePacket13) packetAt_ = offset;
      if (item.type == LazItemType::Bytes) {
        bytesAt_ = offset;
        byteModels_.resize(item.size);
      }
      offset += item.size;
    }
    if (packetAt_) packets_.emplace();
  }

  void reset(const std::byte* first) {
    point_.reset();
    if (timeAt_) times_.reset(load<std::uint64_t>(first + *timeAt_));
    if (colourAt_) colours_.reset();
    if (packetAt_) packets_->reset();
    for (auto& model : byteModels_) model.reset();
  }

  /// False when the stream has ended before the point.
  [[gnu::always_inline]] bool code(Coder& coder, const std::byte* last, std::byte* now) {
    if (!coder.proceed()) return false;
    point_.code(coder, last, now);
    if (timeAt_) {
      std::byte* const at = now + *timeAt_;
      store(at, times_.code(coder, load<std::uint64_t>(at)));
    }
    if (colourAt_) codeValue<Colour>(coder, colours_, last + *colourAt_, now + *colourAt_);
    if (packetAt_) {
      if (!coder.proceed()) return false;
      codeValue<WavePacket>(coder, *packets_, last + *packetAt_, now + *packetAt_);
    }
    return byteModels_.empty() || codeBytes(coder, last + bytesAt_, now + bytesAt_);
  }

private:
  template <class Value, class Item>
  static void codeValue(Coder& coder, Item& item, const std::byte* last, std::byte* now) {
    auto value = load<Value>(now);
    item.code(coder, load<Value>(last), value);
    store(now, value);
  }

  bool codeBytes(Coder& coder, const std::byte* last, std::byte* now) {
    constexpr std::size_t bytesBetweenQuestions = 32;
    for (std::size_t i = 0; i < byteModels_.size(); ++i) {
      if (i % bytesBetweenQuestions == 0 && !coder.proceed()) return false;
      now[i] = static_cast<std::byte>(ByteDifferences<Coder>::code(
          coder, byteModels_[i], std::to_integer<unsigned>(last[i]), std::to_integer<unsigned>(now[i])));
    }
    return true;
  }

  Point10Coder<Coder> point_;
  TimeCoder<Coder, false> times_;
  ColourCoder<Coder> colours_;
  std::optional<WavePacketCoder<Coder>> packets_;
  std::vector<typename Coder::template Model<256>> byteModels_;
  std::optional<std::size_t> timeAt_;
  std::optional<std::size_t> colourAt_;
  std::optional<std::size_t> packetAt_;
  std::size_t bytesAt_ = 0;
};

} // namespace Zamt::Host::Laz
