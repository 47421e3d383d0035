#pragma once

#include "tests/laz-judge/LazFile.h"
#include "tests/laz-judge/items.h"

#include <cstdlib>

// The points of a chunk of the formats 0 to 5: one stream, in which the items of a point follow each other.

namespace Zamt::Testing::Laz {

/// The 20 bytes that the formats 0 to 5 begin with.
class Point10 {
public:
  template <class Coder>
  void code(Coder& coder, const Byte* last, Byte* now) {
    const unsigned mask = coder.symbol(changed, Coder::encodes ? changes(last, now) : 0);
    now[14] = mask & 32 ? codeByte(coder, flags[last[14]], now[14]) : last[14];
    const unsigned r = now[14] & 7, n = now[14] >> 3 & 7;
    const unsigned map = maps[n][r];
    codeIntensity(coder, mask, map, now);
    now[15] = mask & 8 ? codeByte(coder, classes[last[15]], now[15]) : last[15];
    now[16] = mask & 4 ? angles[now[14] >> 6 & 1].code(coder, last[16], now[16]) : last[16];
    now[17] = mask & 2 ? codeByte(coder, userData[last[17]], now[17]) : last[17];
    const auto source = numberAt<std::int16_t>(last, 18);
    putNumber(now, 18,
              mask & 1
                  ? static_cast<std::int16_t>(sources.code(coder, 0, source, numberAt<std::int16_t>(now, 18)))
                  : source);
    codeStep(coder, x, n == 1 ? 1 : 0, medianX[map], last, now, 0);
    codeStep(coder, y, contextOfY(n == 1, x.k), medianY[map], last, now, 4);
    std::int32_t& height =
        heights[static_cast<unsigned>(std::abs(static_cast<int>(n) - static_cast<int>(r)))];
    height = z.code(coder, contextOfZ(n == 1, x.k, y.k), height, numberAt<std::int32_t>(now, 8));
    putNumber(now, 8, height);
  }

  /// Codes how far a coordinate is from that of the last point.
  template <class Coder, class Model>
  static void codeStep(Coder& coder, Model& model, unsigned context, Median& median, const Byte* last,
                       Byte* now, std::size_t at) {
    const auto before = numberAt<std::uint32_t>(last, at);
    const auto real = static_cast<std::int32_t>(numberAt<std::uint32_t>(now, at) - before);
    const std::int32_t step = model.code(coder, context, median.value(), real);
    median.push(step);
    putNumber(now, at, before + static_cast<std::uint32_t>(step));
  }

private:
  unsigned changes(const Byte* last, const Byte* now) const {
    const unsigned map = maps[now[14] >> 3 & 7][now[14] & 7];
    return (now[14] != last[14] ? 32U : 0) |
           (numberAt<std::uint16_t>(now, 12) != intensities[map] ? 16U : 0) | (now[15] != last[15] ? 8U : 0) |
           (now[16] != last[16] ? 4U : 0) | (now[17] != last[17] ? 2U : 0) |
           (std::memcmp(now + 18, last + 18, 2) != 0 ? 1U : 0);
  }

  template <class Coder>
  static Byte codeByte(Coder& coder, SymbolModel<256>& model, Byte value) {
    return static_cast<Byte>(coder.symbol(model, value));
  }

  template <class Coder>
  void codeIntensity(Coder& coder, unsigned mask, unsigned map, Byte* now) {
    std::uint16_t& value = intensities[map];
    if (mask & 16)
      value = static_cast<std::uint16_t>(
          intensity.code(coder, std::min(map, 3U), value, numberAt<std::uint16_t>(now, 12)));
    putNumber(now, 12, value);
  }

  static constexpr Byte maps[8][8] = {{15, 14, 13, 12, 11, 10, 9, 8},  {14, 0, 1, 3, 6, 10, 10, 9},
                                      {13, 1, 2, 4, 7, 11, 11, 10},    {12, 3, 4, 5, 8, 12, 12, 11},
                                      {11, 6, 7, 8, 9, 13, 13, 12},    {10, 10, 11, 12, 13, 14, 14, 13},
                                      {9, 10, 11, 12, 13, 14, 15, 14}, {8, 9, 10, 11, 12, 13, 14, 15}};

  std::array<std::uint16_t, 16> intensities{};
  std::array<std::int32_t, 8> heights{};
  std::array<Median, 16> medianX, medianY;
  SymbolModel<64> changed;
  std::array<SymbolModel<256>, 256> flags, classes, userData;
  std::array<ByteModel, 2> angles;
  IntegerModel<16, 4> intensity;
  IntegerModel<16, 1> sources;
  IntegerModel<32, 2> x;
  IntegerModel<32, 22> y;
  IntegerModel<32, 20> z;
};

/// All items of the points of one chunk.
class PointwiseChunk {
public:
  PointwiseChunk(const std::vector<LazItem>& itemList, const Byte* first)
      : items(itemList), extra(itemList.back().size) {
    if (items.size() > 1 && items[1].type == LazItem::gpsTime)
      time = TimeModel<true>(numberAt<std::uint64_t>(first, items[0].size));
  }

  template <class Coder>
  void code(Coder& coder, const Byte* last, Byte* now) {
    for (const LazItem& item : items) {
      switch (item.type) {
      case LazItem::point10: core.code(coder, last, now); break;
      case LazItem::gpsTime: putNumber(now, 0, time.code(coder, numberAt<std::uint64_t>(now), broken)); break;
      case LazItem::colour: colour.code(coder, last, now); break;
      case LazItem::wavePacket: wavePacket.code(coder, last, now); break;
      default:
        for (unsigned i = 0; i < item.size; ++i) now[i] = extra[i].code(coder, last[i], now[i]);
      }
      last += item.size;
      now += item.size;
    }
  }

  bool broken = false; ///< a time was coded as none may be

private:
  const std::vector<LazItem>& items;
  Point10 core;
  TimeModel<true> time;
  ColourModel colour;
  WavePacketModel wavePacket;
  std::vector<ByteModel> extra;
};

} // namespace Zamt::Testing::Laz
