#include "host/clouds/laz/LazDecoder.h"

#include "host/clouds/laz/PointLayers.h"
#include "host/clouds/laz/PointwiseCoder.h"

#include <algorithm>
#include <array>

namespace Zamt::Host {

using namespace Laz;

class LazDecoder::Body {
public:
  virtual ~Body() = default;
  virtual bool begin(std::span<const std::byte> chunk, std::uint64_t points,
                     std::span<const LazColumn> columns, bool wantsClassContexts, std::string& damage,
                     std::span<const std::uint8_t> known) = 0;
  virtual bool decodesClassContexts() const { return false; }
  virtual bool next(std::size_t count, std::span<const LazColumn> columns, std::string& damage,
                    std::uint8_t* classContexts) = 0;
  virtual bool finish(std::string& damage) = 0;
  virtual std::size_t consumed() const = 0;
};

namespace {

template <class Value>
void copyColumn(const std::byte* from, std::size_t fromStride, LazColumn to, std::size_t count) {
  for (std::size_t i = 0; i < count; ++i) store(to.at + i * to.stride, load<Value>(from + i * fromStride));
}

/// Copies `count` values of a part from records that lie one after the other.
void copyPart(const LazPart& part, const std::byte* records, std::size_t recordLength, LazColumn to,
              std::size_t count) {
  const std::byte* const from = records + part.offset;
  switch (part.size) {
  case 1: copyColumn<std::uint8_t>(from, recordLength, to, count); break;
  case 2: copyColumn<std::uint16_t>(from, recordLength, to, count); break;
  case 4: copyColumn<std::uint32_t>(from, recordLength, to, count); break;
  case 6: copyColumn<Colour>(from, recordLength, to, count); break;
  case 8: copyColumn<std::uint64_t>(from, recordLength, to, count); break;
  default: copyColumn<WavePacket>(from, recordLength, to, count); break;
  }
}

LazColumn behind(LazColumn column, std::size_t count) {
  return column.at ? LazColumn{column.at + count * column.stride, column.stride} : column;
}

} // namespace

/// Chunks in one stream. Points are decoded as whole records, a few at a time, of which the columns are then
/// filled.
class LazDecoder::PointwiseBody : public LazDecoder::Body {
public:
  explicit PointwiseBody(const LazFormat& format_) : format(format_), points(format_) {
    constexpr std::size_t blockBytes = 16384;
    blockPoints = std::clamp<std::size_t>(blockBytes / format.recordLength, 1, 256);
    records.resize((1 + blockPoints) * format.recordLength);
  }

  bool begin(std::span<const std::byte> bytes, std::uint64_t, std::span<const LazColumn>, bool,
             std::string& damage, std::span<const std::uint8_t>) override {
    if (bytes.size() < format.recordLength) {
      damage = "it is shorter than one point";
      return false;
    }
    chunk = bytes;
    atStart = true;
    std::memcpy(records.data(), chunk.data(), format.recordLength);
    points.reset(chunk.data());
    coder.start(stream, chunk.subspan(format.recordLength));
    return true;
  }

  bool next(std::size_t count, std::span<const LazColumn> columns, std::string& damage,
            std::uint8_t*) override {
    std::size_t done = 0;
    if (atStart && count > 0) {
      fill(columns, 0, 0, 1);
      atStart = false;
      done = 1;
    }
    while (done < count) {
      const std::size_t block = std::min(blockPoints, count - done);
      if (!decodeBlock(block)) {
        damage = "it ends too early";
        return false;
      }
      fill(columns, done, 1, block);
      std::memcpy(records.data(), &records[block * format.recordLength], format.recordLength);
      done += block;
    }
    return true;
  }

  bool finish(std::string& damage) override {
    if (!coder.proceed())
      damage = "it ends too early";
    else if (coder.isBroken())
      damage = "it holds what no compressor writes";
    else if (consumed() != chunk.size())
      damage = "it is longer than its points";
    else
      return true;
    return false;
  }

  std::size_t consumed() const override { return format.recordLength + coder.consumed(); }

private:
  /// Decodes points behind the one that lies in front of the block.
  bool decodeBlock(std::size_t count) {
    RangeDecoder local = coder;
    std::byte* last = records.data();
    for (std::size_t i = 0; i < count; ++i, last += format.recordLength)
      if (!points.code(local, last, last + format.recordLength)) return false;
    coder = local;
    return true;
  }

  void fill(std::span<const LazColumn> columns, std::size_t target, std::size_t record, std::size_t count) {
    const std::byte* const from = &records[record * format.recordLength];
    for (std::size_t part = 0; part < format.parts.size(); ++part)
      if (columns[part].at)
        copyPart(format.parts[part], from, format.recordLength, behind(columns[part], target), count);
  }

  const LazFormat& format;
  PointwiseCoder<RangeDecoder> points;
  std::size_t blockPoints = 0;
  std::vector<std::byte> records; ///< The last point before the block, then the block.
  std::span<const std::byte> chunk;
  bool atStart = false;
  StreamBytes stream;
  RangeDecoder coder;
};

/// Chunks in layers. A block of points is decoded layer by layer, with the contexts that the first one gives.
class LazDecoder::LayeredBody : public LazDecoder::Body {
public:
  explicit LayeredBody(const LazFormat& format_)
      : format(format_), layers(format_), streams(format_.layerCount()) {}

  bool begin(std::span<const std::byte> bytes, std::uint64_t points, std::span<const LazColumn> columns,
             bool wantsClassContexts, std::string& damage,
             std::span<const std::uint8_t> knownContexts) override {
    if (!readLayeredChunk(format, bytes, chunk) || chunk.size != bytes.size()) {
      damage = "the sizes of its layers are not those of the chunk";
      return false;
    }
    if (chunk.points != points) {
      damage = "it says " + std::to_string(chunk.points) + " points, where " + std::to_string(points) +
               " are expected";
      return false;
    }
    if (points > 1 && chunk.layers[returnLayer].empty()) {
      damage = "its layer of returns is empty";
      return false;
    }
    first = bytes.first(format.recordLength);
    atStart = true;
    known = knownContexts;
    startLayers(columns, wantsClassContexts);
    return true;
  }

  bool next(std::size_t count, std::span<const LazColumn> columns, std::string& damage,
            std::uint8_t* classContexts) override {
    std::size_t done = 0;
    if (atStart && count > 0) {
      for (std::size_t part = 0; part < columns.size(); ++part)
        if (columns[part].at) copyPart(format.parts[part], first.data(), 0, columns[part], 1);
      if (classContexts) classContexts[0] = static_cast<std::uint8_t>(firstContext);
      if (!known.empty()) known = known.subspan(1);
      atStart = false;
      done = 1;
    }
    for (; done < count; done += std::min(blockPoints, count - done))
      if (!decodeBlock(done, std::min(blockPoints, count - done), columns, classContexts)) {
        damage = "its layer of " + layerName(endedLayer, format) + " ends too early";
        return false;
      }
    return true;
  }

  bool finish(std::string& damage) override {
    for (std::size_t layer = 0; layer < streams.size(); ++layer) {
      if (!streams[layer].isDecoded || isWhole(streams[layer])) continue;
      damage = "its layer of " + layerName(layer, format) + " holds what no compressor writes";
      return false;
    }
    return true;
  }

  std::size_t consumed() const override { return chunk.size; }
  bool decodesClassContexts() const override { return streams[returnLayer].isDecoded; }

private:
  static constexpr std::size_t blockPoints = 1024;

  struct Stream {
    StreamBytes bytes;
    RangeDecoder coder;
    bool isDecoded = false;
  };

  /// A layer may be longer than its stream if zeros follow, which is how it is replaced by a shorter one
  /// without moving what lies behind.
  static bool isWhole(Stream& stream) {
    if (!stream.coder.proceed() || stream.coder.isBroken()) return false;
    const std::span<const std::byte> rest = stream.bytes.bytes().subspan(stream.coder.consumed());
    return std::ranges::all_of(rest, [](std::byte each) { return each == std::byte{0}; });
  }

  void startStream(std::size_t layer) {
    streams[layer].isDecoded = true;
    streams[layer].coder.start(streams[layer].bytes, chunk.layers[layer]);
  }

  void startLayers(std::span<const LazColumn> columns, bool wantsClassContexts) {
    for (Stream& stream : streams) stream.isDecoded = false;
    ReturnLayer<RangeDecoder>::Point point;
    point.returns = load<std::uint8_t>(&first[14]);
    point.channel = load<std::uint8_t>(&first[15]) >> 4 & 3;
    point.x = load<std::uint32_t>(&first[0]);
    point.y = load<std::uint32_t>(&first[4]);
    firstContext = layers.returns.start(point);
    bool needsContexts =
        wantsClassContexts || columns[0].at || columns[1].at || columns[4].at || columns[5].at;
    layers.each([&](std::size_t layer, std::size_t part, auto& coder) {
      using Value = typename std::remove_reference_t<decltype(coder)>::Value;
      if (!columns[part].at || chunk.layers[layer].empty()) return;
      needsContexts = true;
      startStream(layer);
      coder.start(firstContext, load<Value>(&first[format.parts[part].offset]), layers.hasOddChannels);
    });
    if (needsContexts && known.empty() && !chunk.layers[returnLayer].empty()) startStream(returnLayer);
  }

  bool decodeBlock(std::size_t from, std::size_t count, std::span<const LazColumn> columns,
                   std::uint8_t* classContexts) {
    if (streams[returnLayer].isDecoded && !decodeReturns(from, count, columns)) {
      endedLayer = returnLayer;
      return false;
    }
    if (!known.empty()) {
      std::ranges::copy(known.first(count), contexts.begin());
      known = known.subspan(count);
    }
    if (classContexts)
      std::transform(contexts.begin(), contexts.begin() + static_cast<std::ptrdiff_t>(count),
                     classContexts + from, [](PointContext each) { return static_cast<std::uint8_t>(each); });
    bool done = true;
    layers.each([&](std::size_t layer, std::size_t part, auto& coder) {
      if (!done || !columns[part].at) return;
      const LazColumn column = behind(columns[part], from);
      if (!streams[layer].isDecoded) {
        repeatFirst(format.parts[part], column, count);
      } else if (!decodeLayer(coder, streams[layer], column, count)) {
        endedLayer = layer;
        done = false;
      }
    });
    return done;
  }

  bool decodeReturns(std::size_t from, std::size_t count, std::span<const LazColumn> columns) {
    const LazColumn returns = behind(columns[4], from);
    if (columns[0].at || columns[1].at)
      return decodeReturns<true>(count, behind(columns[0], from), behind(columns[1], from), returns);
    return decodeReturns<false>(count, {}, {}, returns);
  }

  template <bool WithXy>
  bool decodeReturns(std::size_t count, LazColumn x, LazColumn y, LazColumn returns) {
    RangeDecoder coder = streams[returnLayer].coder;
    ReturnLayer<RangeDecoder>::Point point;
    for (std::size_t i = 0; i < count; ++i) {
      if (!coder.proceed()) return false;
      contexts[i] = layers.returns.code<WithXy>(coder, point);
      if (x.at) store(x.at + i * x.stride, point.x);
      if (y.at) store(y.at + i * y.stride, point.y);
      if (returns.at) store(returns.at + i * returns.stride, point.returns);
    }
    streams[returnLayer].coder = coder;
    return true;
  }

  template <class Layer>
  bool decodeLayer(Layer& layer, Stream& stream, LazColumn column, std::size_t count) {
    RangeDecoder coder = stream.coder;
    std::byte* at = column.at;
    for (std::size_t i = 0; i < count; ++i, at += column.stride) {
      if (!coder.proceed()) return false;
      store(at, layer.code(coder, contexts[i], {}));
    }
    stream.coder = coder;
    return true;
  }

  void repeatFirst(const LazPart& part, LazColumn column, std::size_t count) {
    copyPart(part, first.data(), 0, column, count);
    if (part.kind != LazPartKind::Flags) return;
    const unsigned flags = load<std::uint8_t>(&first[part.offset]) & 0xCFU;
    for (std::size_t i = 0; i < count; ++i)
      store(column.at + i * column.stride, static_cast<std::uint8_t>(flags | channelOf(contexts[i]) << 4));
  }

  const LazFormat& format;
  PointLayers<RangeDecoder> layers;
  std::vector<Stream> streams;
  LayeredChunk chunk;
  std::span<const std::byte> first;
  PointContext firstContext = 0;
  bool atStart = false;
  std::span<const std::uint8_t> known; ///< Class contexts of the points that are left; mostly none.
  std::size_t endedLayer = 0;
  std::array<PointContext, blockPoints> contexts{};
};

LazDecoder::LazDecoder(const LazFormat& format) {
  if (format.isLayered())
    body = std::make_unique<LayeredBody>(format);
  else
    body = std::make_unique<PointwiseBody>(format);
}

LazDecoder::~LazDecoder() = default;
LazDecoder::LazDecoder(LazDecoder&&) noexcept = default;
LazDecoder& LazDecoder::operator=(LazDecoder&&) noexcept = default;

bool LazDecoder::decode(std::span<const std::byte> chunk, std::uint64_t points,
                        std::span<const LazColumn> columns, std::string& damage,
                        std::span<std::uint8_t> classContexts) {
  return begin(chunk, points, columns, !classContexts.empty(), damage) &&
         next(static_cast<std::size_t>(points), columns, damage,
              classContexts.empty() ? nullptr : classContexts.data()) &&
         finish(damage);
}

bool LazDecoder::begin(std::span<const std::byte> chunk, std::uint64_t points,
                       std::span<const LazColumn> columns, bool wantsClassContexts, std::string& damage,
                       std::span<const std::uint8_t> known) {
  return body->begin(chunk, points, columns, wantsClassContexts, damage, known);
}

bool LazDecoder::decodesClassContexts() const { return body->decodesClassContexts(); }

bool LazDecoder::next(std::size_t count, std::span<const LazColumn> columns, std::string& damage,
                      std::uint8_t* classContexts) {
  return body->next(count, columns, damage, classContexts);
}

bool LazDecoder::finish(std::string& damage) { return body->finish(damage); }

std::size_t LazDecoder::consumed() const { return body->consumed(); }

std::string chunkDamaged(const std::string& path, std::uint64_t number, std::uint64_t offset,
                         const std::string& damage) {
  return "Chunk " + std::to_string(number) + " of \"" + path + "\", at byte " + std::to_string(offset) +
         ", is damaged: " + damage + ". Fetch the file again from where it came.";
}

} // namespace Zamt::Host
