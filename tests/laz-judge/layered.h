#pragma once

#include "tests/laz-judge/LazFile.h"
#include "tests/laz-judge/pointwise.h"

#include <memory>
#include <optional>
#include <type_traits>
#include <utility>

// The points of a chunk of the formats 6 to 10: a stream for each field, a context for each scanner channel.

namespace Zamt::Testing::Laz {

/// A stream. One without bytes says that its field never changes.
template <class Coder>
struct Layer {
  Coder coder;
  bool used = false; ///< decoding: there are bytes; encoding: some point needs them

  /// Codes a value, unless it is one that never changes.
  template <class Value, class Code>
  Value code(Value last, Value now, Code how) {
    if (!Coder::encodes && !used) return last;
    if (now != last) used = true;
    return how(coder, now);
  }
};

/// What a point's other fields take from its first layer.
struct Shape {
  unsigned mask = 0, n = 0, r = 0, kx = 0, ky = 0;

  bool timeChanged() const { return (mask & 16) != 0; }
  bool single() const { return n == 1; }
  unsigned ends() const { return (r == 1 ? 2U : 0) + (r >= n ? 1U : 0); }
  unsigned level() const { return std::min(n > r ? n - r : r - n, 7U); }
  unsigned map() const {
    static constexpr Byte ofZero[16] = {0, 1, 2, 3, 4, 5, 3, 4, 4, 5, 5, 5, 5, 5, 5, 5};
    const unsigned a = std::min(n, r), b = std::max(n, r);
    if (a == 0) return ofZero[b];
    if (a == 1) return std::min(b - 1, 2U) + (b > 2 ? 1 : 0);
    if (a == 2) return b == 2 ? 2 : b <= 10 ? 4 : 3;
    return b == a || (b == a + 1 && a >= 11) ? 5 : 4;
  }
};

/// Models and last values of one scanner channel.
struct Point14Context {
  explicit Point14Context(const Byte* point) : time(numberAt<std::uint64_t>(point, 22)) {
    std::copy_n(point, 30, last.begin());
    heights.fill(numberAt<std::int32_t>(point, 8));
    intensities.fill(numberAt<std::uint16_t>(point, 12));
  }

  unsigned channel() const { return last[15] >> 4 & 3; }
  unsigned n() const { return last[14] >> 4; }
  unsigned r() const { return last[14] & 15; }

  std::array<Byte, 30> last;
  bool timeChanged = false;
  std::array<std::int32_t, 8> heights;
  std::array<std::uint16_t, 8> intensities;
  std::array<Median, 12> medianX, medianY;
  std::array<SymbolModel<128>, 8> masks;
  SymbolModel<3> channels;
  std::array<SymbolModel<16>, 16> ns, rs;
  SymbolModel<13> rSteps;
  IntegerModel<32, 2> x;
  IntegerModel<32, 22> y;
  IntegerModel<32, 20> z;
  std::array<SymbolModel<256>, 64> classes;
  std::array<SymbolModel<64>, 64> flags;
  IntegerModel<16, 4> intensity;
  IntegerModel<16, 2> angle;
  std::array<SymbolModel<256>, 64> userData;
  IntegerModel<16, 1> source;
  TimeModel<false> time;
};

/// The 30 bytes that the formats 6 to 10 begin with.
class Point14 {
public:
  explicit Point14(const Byte* first) : current(first[15] >> 4 & 3) {
    contexts[current] = std::make_unique<Point14Context>(first);
  }

  unsigned channel() const { return current; }
  bool broken = false; ///< a time was coded as none may be

  /// Gives back whether the point is of another channel than the one before.
  template <class Coder>
  bool code(Layer<Coder>* layers, Byte* now) {
    layers[0].used = true;
    layers[1].used = true;
    const Shape shape = codeFirst(layers[0].coder, now);
    Point14Context& context = *contexts[current];
    codeHeight(layers[1].coder, context, shape, now);
    codeBytes(layers, context, shape, now);
    const Byte* last = context.last.data();
    codeIntensity(layers[4], context, shape, now);
    codeMasked(layers[5], shape.mask & 8, context.angle, shape.timeChanged() ? 1 : 0, last, now, 18);
    codeMasked(layers[7], shape.mask & 32, context.source, 0, last, now, 20);
    codeTime(layers[8], context, shape.timeChanged(), now);
    std::copy_n(now, 30, context.last.begin());
    context.timeChanged = shape.timeChanged();
    return (shape.mask & 64) != 0;
  }

private:
  template <class Coder>
  Shape codeFirst(Coder& coder, Byte* now) {
    Point14Context& before = *contexts[current];
    const unsigned q =
        (before.r() == 1 ? 1U : 0) + (before.r() >= before.n() ? 2U : 0) + (before.timeChanged ? 4U : 0);
    Shape shape;
    shape.mask = coder.symbol(before.masks[q], Coder::encodes ? changes(now) : 0);
    if (shape.mask & 64) {
      const unsigned step = coder.symbol(before.channels, ((now[15] >> 4) - current - 1) & 3);
      current = (current + 1 + step) & 3;
      if (!contexts[current]) contexts[current] = std::make_unique<Point14Context>(before.last.data());
    }
    Point14Context& context = *contexts[current];
    const unsigned n = context.n();
    shape.n = shape.mask & 4 ? coder.symbol(context.ns[n], now[14] >> 4) : n;
    shape.r = codeReturn(coder, context, shape.mask, now[14] & 15);
    now[14] = static_cast<Byte>(shape.n << 4 | shape.r);
    const unsigned median = 2 * shape.map() + (shape.timeChanged() ? 1 : 0);
    const Byte* last = context.last.data();
    Point10::codeStep(coder, context.x, shape.single() ? 1 : 0, context.medianX[median], last, now, 0);
    shape.kx = context.x.k;
    Point10::codeStep(coder, context.y, contextOfY(shape.single(), shape.kx), context.medianY[median], last,
                      now, 4);
    shape.ky = context.y.k;
    return shape;
  }

  unsigned changes(const Byte* now) const {
    const unsigned channel = now[15] >> 4 & 3;
    const Point14Context& context = contexts[channel] ? *contexts[channel] : *contexts[current];
    const Byte* last = context.last.data();
    const auto differs = [&](std::size_t at, std::size_t size) {
      return std::memcmp(now + at, last + at, size) != 0;
    };
    const unsigned step = ((now[14] & 15) - context.r()) & 15;
    const unsigned returns = step < 2 ? step : step == 15 ? 2 : 3;
    return (channel != current ? 64U : 0) | (differs(20, 2) ? 32U : 0) | (differs(22, 8) ? 16U : 0) |
           (differs(18, 2) ? 8U : 0) | (now[14] >> 4 != last[14] >> 4 ? 4U : 0) | returns;
  }

  template <class Coder>
  static unsigned codeReturn(Coder& coder, Point14Context& context, unsigned mask, unsigned now) {
    const unsigned last = context.r();
    switch (mask & 3) {
    case 0: return last;
    case 1: return (last + 1) & 15;
    case 2: return (last + 15) & 15;
    default:
      if (mask & 16) return coder.symbol(context.rs[last], now);
      return (last + 2 + coder.symbol(context.rSteps, (now - last - 2) & 15)) & 15;
    }
  }

  template <class Coder>
  static void codeHeight(Coder& coder, Point14Context& context, const Shape& shape, Byte* now) {
    std::int32_t& height = context.heights[shape.level()];
    height = context.z.code(coder, contextOfZ(shape.single(), shape.kx, shape.ky), height,
                            numberAt<std::int32_t>(now, 8));
    putNumber(now, 8, height);
  }

  template <class Coder>
  void codeBytes(Layer<Coder>* layers, Point14Context& context, const Shape& shape, Byte* now) const {
    const Byte* last = context.last.data();
    const auto code = [&](unsigned layer, auto& model, unsigned before, unsigned value) {
      return static_cast<Byte>(layers[layer].code(
          before, value, [&](Coder& coder, unsigned real) { return coder.symbol(model, real); }));
    };
    const unsigned lastClass = 2 * (last[16] & 31U) + (shape.ends() == 3 ? 1 : 0);
    now[16] = code(2, context.classes[lastClass], last[16], now[16]);
    const auto flagsOf = [](const Byte* point) { return (point[15] & 15U) | (point[15] >> 6) * 16U; };
    const unsigned flags = code(3, context.flags[flagsOf(last)], flagsOf(last), flagsOf(now));
    now[15] = static_cast<Byte>((flags & 15) | current << 4 | flags >> 4 << 6);
    now[17] = code(6, context.userData[last[17] >> 2], last[17], now[17]);
  }

  template <class Coder>
  static void codeIntensity(Layer<Coder>& layer, Point14Context& context, const Shape& shape, Byte* now) {
    std::uint16_t& predicted = context.intensities[2 * shape.ends() + (shape.timeChanged() ? 1 : 0)];
    const auto code = [&](Coder& coder, std::uint16_t value) {
      return predicted =
                 static_cast<std::uint16_t>(context.intensity.code(coder, shape.ends(), predicted, value));
    };
    const auto last = numberAt<std::uint16_t>(context.last.data(), 12);
    putNumber(now, 12, layer.code(last, numberAt<std::uint16_t>(now, 12), code));
  }

  // Codes a field whose change is told by the mask.
  template <class Coder, class Model>
  static void codeMasked(Layer<Coder>& layer, bool changed, Model& model, unsigned modelContext,
                         const Byte* last, Byte* now, std::size_t at) {
    auto value = numberAt<std::int16_t>(last, at);
    const auto code = [&](Coder& coder, std::int16_t real) {
      return static_cast<std::int16_t>(model.code(coder, modelContext, value, real));
    };
    if (changed) value = layer.code(value, numberAt<std::int16_t>(now, at), code);
    putNumber(now, at, value);
  }

  template <class Coder>
  void codeTime(Layer<Coder>& layer, Point14Context& context, bool changed, Byte* now) {
    auto value = numberAt<std::uint64_t>(context.last.data(), 22);
    const auto code = [&](Coder& coder, std::uint64_t real) {
      return context.time.code(coder, real, broken);
    };
    if (changed) value = layer.code(value, numberAt<std::uint64_t>(now, 22), code);
    putNumber(now, 22, value);
  }

  unsigned current;
  std::array<std::unique_ptr<Point14Context>, 4> contexts;
};

/// Models and last values, by scanner channel, of an item that follows Point14.
template <class Model>
class ChannelContexts {
public:
  ChannelContexts(const LazItem& item, unsigned channel, const Byte* first)
      : size(item.size), byChannel(item.version >= 4), current(channel) {
    contexts[channel] = Context{newModel(), {first, first + size}};
  }

  /// The models of the next point and the last value that predicts it, where the new one is to be stored.
  /// Items of version 4 simply follow the channel. Those before take channel 0 for every point that is not
  /// the first of a run, and predict the first one of a run from the channel before, in which they also store
  /// it.
  std::pair<Model&, Byte*> next(unsigned channel, bool channelChanged) {
    const unsigned given = byChannel || channelChanged ? channel : 0;
    std::vector<Byte>* last = &contexts[current]->last;
    const bool seeded = given != current && !contexts[given];
    if (seeded) contexts[given] = Context{newModel(), *last};
    if (seeded || byChannel) last = &contexts[given]->last;
    current = given;
    return {*contexts[given]->model, last->data()};
  }

  const std::size_t size;

private:
  struct Context {
    std::unique_ptr<Model> model;
    std::vector<Byte> last;
  };

  std::unique_ptr<Model> newModel() const;

  bool byChannel;
  unsigned current;
  std::array<std::optional<Context>, 4> contexts;
};

struct ColourNirModel {
  ColourModel colour;
  SymbolModel<4> nirUsed;
  std::array<ByteModel, 2> nir;
};

using BytesModel = std::vector<ByteModel>;

template <class Model>
std::unique_ptr<Model> ChannelContexts<Model>::newModel() const {
  if constexpr (std::is_same_v<Model, BytesModel>)
    return std::make_unique<Model>(size);
  else
    return std::make_unique<Model>();
}

/// All items of the points of one chunk.
class LayeredChunk {
public:
  LayeredChunk(const std::vector<LazItem>& items, const Byte* first) : core(first) {
    first += 30;
    for (const LazItem& item : items) {
      if (item.type == LazItem::point14) continue;
      if (item.type == LazItem::colour14 || item.type == LazItem::colourNir14)
        colour.emplace(item, core.channel(), first);
      if (item.type == LazItem::wavePacket14) wavePacket.emplace(item, core.channel(), first);
      if (item.type == LazItem::bytes14) bytes.emplace(item, core.channel(), first);
      first += item.size;
    }
  }

  template <class Coder>
  void code(Layer<Coder>* layers, Byte* now) {
    const bool changed = core.code(layers, now);
    layers += 9;
    now += 30;
    if (colour) {
      layers = codeColour(layers, changed, now);
      now += colour->size;
    }
    if (wavePacket) {
      codeWavePacket(*layers++, changed, now);
      now += wavePacket->size;
    }
    if (bytes) codeExtraBytes(layers, changed, now);
  }

  bool broken() const { return core.broken; }

private:
  template <class Coder>
  Layer<Coder>* codeColour(Layer<Coder>* layers, bool changed, Byte* now) {
    const auto [model, last] = colour->next(core.channel(), changed);
    if (!Coder::encodes && !layers->used)
      std::memcpy(now, last, 6);
    else if (model.colour.code(layers->coder, last, now) != 0)
      layers->used = true;
    ++layers;
    if (colour->size == 8) codeNir(*layers++, model, last + 6, now + 6);
    std::memcpy(last, now, colour->size);
    return layers;
  }

  template <class Coder>
  static void codeNir(Layer<Coder>& layer, ColourNirModel& model, const Byte* last, Byte* now) {
    const unsigned real = (now[0] != last[0] ? 1U : 0) | (now[1] != last[1] ? 2U : 0);
    const unsigned used = layer.code(
        0U, real, [&](Coder& coder, unsigned value) { return coder.symbol(model.nirUsed, value); });
    for (unsigned i = 0; i < 2; ++i)
      now[i] = used >> i & 1 ? model.nir[i].code(layer.coder, last[i], now[i]) : last[i];
  }

  template <class Coder>
  void codeWavePacket(Layer<Coder>& layer, bool changed, Byte* now) {
    const auto [model, last] = wavePacket->next(core.channel(), changed);
    if (Coder::encodes && std::memcmp(now, last, wavePacket->size) != 0) layer.used = true;
    if (Coder::encodes || layer.used)
      model.code(layer.coder, last, now);
    else
      std::memcpy(now, last, wavePacket->size);
    std::memcpy(last, now, wavePacket->size);
  }

  template <class Coder>
  void codeExtraBytes(Layer<Coder>* layers, bool changed, Byte* now) {
    const auto [model, last] = bytes->next(core.channel(), changed);
    for (std::size_t i = 0; i < bytes->size; ++i) {
      ByteModel& byteModel = model[i];
      const Byte before = last[i];
      const auto code = [&](Coder& coder, Byte real) { return byteModel.code(coder, before, real); };
      last[i] = now[i] = layers[i].code(before, now[i], code);
    }
  }

  Point14 core;
  std::optional<ChannelContexts<ColourNirModel>> colour;
  std::optional<ChannelContexts<WavePacketModel>> wavePacket;
  std::optional<ChannelContexts<BytesModel>> bytes;
};

} // namespace Zamt::Testing::Laz
