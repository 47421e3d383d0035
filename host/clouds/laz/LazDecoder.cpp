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
  explicit PointwiseBody(const LazFormat& format) : format_(format), points_(format) {
    constexpr std::size_t blockBytes = 16384;
    blockPoints_ = std::clamp<std::size_t>(blockBytes / format_.recordLength, 1, 256);
    records_.resize((1 + blockPoints_) * format_.recordLength);
  }

  bool begin(std::span<const std::byte> bytes, std::uint64_t, std::span<const LazColumn>, bool,
             std::string& damage, std::span<const std::uint8_t>) override {
    if (bytes.size() < format_.recordLength) {
      damage = "it is shorter than one point";
      return false;
    }
    chunk_ = bytes;
    atStart_ = true;
    std::memcpy(records_.data(), chunk_.data(), format_.recordLength);
    points_.reset(chunk_.data());
    coder_.start(stream_, chunk_.subspan(format_.recordLength));
    return true;
  }

  bool next(std::size_t count, std::span<const LazColumn> columns, std::string& damage,
            std::uint8_t*) override {
    std::size_t done = 0;
    if (atStart_ && count > 0) {
      fill(columns, 0, 0, 1);
      atStart_ = false;
      done = 1;
    }
    while (done < count) {
      const std::size_t block = std::min(blockPoints_, count - done);
      if (!decodeBlock(block)) {
        damage = "it ends too early";
        return false;
      }
      fill(columns, done, 1, block);
      std::memcpy(records_.data(), &records_[block * format_.recordLength], format_.recordLength);
      done += block;
    }
    return true;
  }

  bool finish(std::string& damage) override {
    if (!coder_.proceed())
      damage = "it ends too early";
    else if (coder_.isBroken())
      damage = "it holds what no compressor writes";
    else if (consumed() != chunk_.size())
      damage = "it is longer than its points";
    else
      return true;
    return false;
  }

  std::size_t consumed() const override { return format_.recordLength + coder_.consumed(); }

private:
  /// Decodes points behind the one that lies in front of the block.
  bool decodeBlock(std::size_t count) {
    RangeDecoder local = coder_;
    std::byte* last = records_.data();
    for (std::size_t i = 0; i < count; ++i, last += format_.recordLength)
      if (!points_.code(local, last, last + format_.recordLength)) return false;
    coder_ = local;
    return true;
  }

  void fill(std::span<const LazColumn> columns, std::size_t target, std::size_t record, std::size_t count) {
    const std::byte* const from = &records_[record * format_.recordLength];
    for (std::size_t part = 0; part < format_.parts.size(); ++part)
      if (columns[part].at)
        copyPart(format_.parts[part], from, format_.recordLength, behind(columns[part], target), count);
  }

  const LazFormat& format_;
  PointwiseCoder<RangeDecoder> points_;
  std::size_t blockPoints_ = 0;
  std::vector<std::byte> records_; ///< The last point before the block, then the block.
  std::span<const std::byte> chunk_;
  bool atStart_ = false;
  StreamBytes stream_;
  RangeDecoder coder_;
};

/// Chunks in layers. A block of points is decoded layer by layer, with the contexts that the first one gives.
class LazDecoder::LayeredBody : public LazDecoder::Body {
public:
  explicit LayeredBody(const LazFormat& format)
      : format_(format), layers_(format), streams_(format.layerCount()) {}

  bool begin(std::span<const std::byte> bytes, std::uint64_t points, std::span<const LazColumn> columns,
             bool wantsClassContexts, std::string& damage,
             std::span<const std::uint8_t> knownContexts) override {
    if (!readLayeredChunk(format_, bytes, chunk_) || chunk_.size != bytes.size()) {
      damage = "the sizes of its layers are not those of the chunk";
      return false;
    }
    if (chunk_.points != points) {
      damage = "it says " + std::to_string(chunk_.points) + " points, where " + std::to_string(points) +
               " are expected";
      return false;
    }
    if (points > 1 && chunk_.layers[returnLayer].empty()) {
      damage = "its layer of returns is empty";
      return false;
    }
    first_ = bytes.first(format_.recordLength);
    atStart_ = true;
    known_ = knownContexts;
    startLayers(columns, wantsClassContexts);
    return true;
  }

  bool next(std::size_t count, std::span<const LazColumn> columns, std::string& damage,
            std::uint8_t* classContexts) override {
    std::size_t done = 0;
    if (atStart_ && count > 0) {
      for (std::size_t part = 0; part < columns.size(); ++part)
        if (columns[part].at) copyPart(format_.parts[part], first_.data(), 0, columns[part], 1);
      if (classContexts) classContexts[0] = static_cast<std::uint8_t>(firstContext_);
      if (!known_.empty()) known_ = known_.subspan(1);
      atStart_ = false;
      done = 1;
    }
    for (; done < count; done += std::min(blockPoints, count - done))
      if (!decodeBlock(done, std::min(blockPoints, count - done), columns, classContexts)) {
        damage = "its layer of " + layerName(endedLayer_, format_) + " ends too early";
        return false;
      }
    return true;
  }

  bool finish(std::string& damage) override {
    for (std::size_t layer = 0; layer < streams_.size(); ++layer) {
      if (!streams_[layer].isDecoded || isWhole(streams_[layer])) continue;
      damage = "its layer of " + layerName(layer, format_) + " holds what no compressor writes";
      return false;
    }
    return true;
  }

  std::size_t consumed() const override { return chunk_.size; }
  bool decodesClassContexts() const override { return streams_[returnLayer].isDecoded; }

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
    streams_[layer].isDecoded = true;
    streams_[layer].coder.start(streams_[layer].bytes, chunk_.layers[layer]);
  }

  void startLayers(std::span<const LazColumn> columns, bool wantsClassContexts) {
    for (Stream& stream : streams_) stream.isDecoded = false;
    ReturnLayer<RangeDecoder>::Point point;
    point.returns = load<std::uint8_t>(&first_[14]);
    point.channel = load<std::uint8_t>(&first_[15]) >> 4 & 3;
    point.x = load<std::uint32_t>(&first_[0]);
    point.y = load<std::uint32_t>(&first_[4]);
    firstContext_ = layers_.returns.start(point);
    bool needsContexts =
        wantsClassContexts || columns[0].at || columns[1].at || columns[4].at || columns[5].at;
    layers_.each([&](std::size_t layer, std::size_t part, auto& coder) {
      using Value = typename std::remove_reference_t<decltype(coder)>::Value;
      if (!columns[part].at || chunk_.layers[layer].empty()) return;
      needsContexts = true;
      startStream(layer);
      coder.start(firstContext_, load<Value>(&first_[format_.parts[part].offset]), layers_.hasOddChannels);
    });
    if (needsContexts && known_.empty() && !chunk_.layers[returnLayer].empty()) startStream(returnLayer);
  }

  bool decodeBlock(std::size_t from, std::size_t count, std::span<const LazColumn> columns,
                   std::uint8_t* classContexts) {
    if (streams_[returnLayer].isDecoded && !decodeReturns(from, count, columns)) {
      endedLayer_ = returnLayer;
      return false;
    }
    if (!known_.empty()) {
      std::ranges::copy(known_.first(count), contexts_.begin());
      known_ = known_.subspan(count);
    }
    if (classContexts)
      std::transform(contexts_.begin(), contexts_.begin() + static_cast<std::ptrdiff_t>(count),
                     classContexts + from, [](PointContext each) { return static_cast<std::uint8_t>(each); });
    bool done = true;
    layers_.each([&](std::size_t layer, std::size_t part, auto& coder) {
      if (!done || !columns[part].at) return;
      const LazColumn column = behind(columns[part], from);
      if (!streams_[layer].isDecoded) {
        repeatFirst(format_.parts[part], column, count);
      } else if (!decodeLayer(coder, streams_[layer], column, count)) {
        endedLayer_ = layer;
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
    RangeDecoder coder = streams_[returnLayer].coder;
    ReturnLayer<RangeDecoder>::Point point;
    for (std::size_t i = 0; i < count; ++i) {
      if (!coder.proceed()) return false;
      contexts_[i] = layers_.returns.code<WithXy>(coder, point);
      if (x.at) store(x.at + i * x.stride, point.x);
      if (y.at) store(y.at + i * y.stride, point.y);
      if (returns.at) store(returns.at + i * returns.stride, point.returns);
    }
    streams_[returnLayer].coder = coder;
    return true;
  }

  template <class Layer>
  bool decodeLayer(Layer& layer, Stream& stream, LazColumn column, std::size_t count) {
    RangeDecoder coder = stream.coder;
    std::byte* at = column.at;
    for (std::size_t i = 0; i < count; ++i, at += column.stride) {
      if (!coder.proceed()) return false;
      store(at, layer.code(coder, contexts_[i], {}));
    }
    stream.coder = coder;
    return true;
  }

  void repeatFirst(const LazPart& part, LazColumn column, std::size_t count) {
    copyPart(part, first_.data(), 0, column, count);
    if (part.kind != LazPartKind::Flags) return;
    const unsigned flags = load<std::uint8_t>(&first_[part.offset]) & 0xCFU;
    for (std::size_t i = 0; i < count; ++i)
      store(column.at + i * column.stride, static_cast<std::uint8_t>(flags | channelOf(contexts_[i]) << 4));
  }

  const LazFormat& format_;
  PointLayers<RangeDecoder> layers_;
  std::vector<Stream> streams_;
  LayeredChunk chunk_;
  std::span<const std::byte> first_;
  PointContext firstContext_ = 0;
  bool atStart_ = false;
  std::span<const std::uint8_t> known_; ///< Class contexts of the points that are left; mostly none.
  std::size_t endedLayer_ = 0;
  std::array<PointContext, blockPoints> contexts_{};
};

LazDecoder::LazDecoder(const LazFormat& format) {
  if (format.isLayered())
    body_ = std::make_unique<LayeredBody>(format);
  else
    body_ = std::make_unique<PointwiseBody>(format);
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
  return body_->begin(chunk, points, columns, wantsClassContexts, damage, known);
}

bool LazDecoder::decodesClassContexts() const { return body_->decodesClassContexts(); }

bool LazDecoder::next(std::size_t count, std::span<const LazColumn> columns, std::string& damage,
                      std::uint8_t* classContexts) {
  return body_->next(count, columns, damage, classContexts);
}

bool LazDecoder::finish(std::string& damage) { return body_->finish(damage); }

std::size_t LazDecoder::consumed() const { return body_->consumed(); }

std::string chunkDamaged(const std::string& path, std::uint64_t number, std::uint64_t offset,
                         const std::string& damage) {
  return "Chunk " + std::to_string(number) + " of \"" + path + "\", at byte " + std::to_string(offset) +
         ", is damaged: " + damage + ". Fetch the file again from where it came.";
}

} // namespace Zamt::Host
