#include "host/clouds/laz/LazEncoder.h"

#include "host/clouds/laz/PointLayers.h"
#include "host/clouds/laz/PointwiseCoder.h"

#include <algorithm>
#include <array>

namespace Zamt::Host {

using namespace Laz;

class LazEncoder::Body {
public:
  virtual ~Body() = default;
  virtual void start(std::span<const std::byte> first) = 0;
  virtual void add(std::span<const std::byte> records) = 0;
  virtual void finish(std::vector<std::byte>& chunk) = 0;
  std::vector<std::byte> firstPoint; ///< Empty between two chunks.
};

namespace {

void append(std::vector<std::byte>& to, std::span<const std::byte> bytes) {
  to.insert(to.end(), bytes.begin(), bytes.end());
}

} // namespace

/// Chunks in one stream.
class LazEncoder::PointwiseBody : public LazEncoder::Body {
public:
  explicit PointwiseBody(const LazFormat& format)
      : points_(format), last_(format.recordLength), now_(format.recordLength) {}

  void start(std::span<const std::byte> first) override {
    points_.reset(first.data());
    std::ranges::copy(first, last_.begin());
    coder_.start(bytes_);
  }

  void add(std::span<const std::byte> records) override {
    RangeEncoder local = coder_;
    for (std::size_t at = 0; at < records.size(); at += now_.size()) {
      std::memcpy(now_.data(), &records[at], now_.size());
      points_.code(local, last_.data(), now_.data());
      now_.swap(last_);
    }
    coder_ = local;
  }

  void finish(std::vector<std::byte>& chunk) override { append(chunk, coder_.finish()); }

private:
  PointwiseCoder<RangeEncoder> points_;
  std::vector<std::byte> last_;
  std::vector<std::byte> now_;
  GrowingBytes bytes_;
  RangeEncoder coder_;
};

/// Chunks in layers, all of which grow at the same time.
class LazEncoder::LayeredBody : public LazEncoder::Body {
public:
  explicit LayeredBody(const LazFormat& format)
      : format_(format), layers_(format), streams_(format.layerCount()) {}

  void start(std::span<const std::byte> first) override {
    points_ = 1;
    for (Stream& stream : streams_) {
      stream.coder.start(stream.bytes);
      stream.isNeeded = false;
    }
    const PointContext context = layers_.returns.start(pointAt(first.data()));
    layers_.each([&](std::size_t, std::size_t part, auto& coder) {
      using Value = typename std::remove_reference_t<decltype(coder)>::Value;
      coder.start(context, load<Value>(&first[format_.parts[part].offset]), layers_.hasOddChannels);
    });
  }

  void add(std::span<const std::byte> records) override {
    for (std::size_t at = 0; at < records.size(); at += blockPoints * format_.recordLength)
      addBlock(records.subspan(at, std::min(blockPoints * format_.recordLength, records.size() - at)));
  }

  void finish(std::vector<std::byte>& chunk) override {
    streams_[returnLayer].isNeeded = streams_[zLayer].isNeeded = true;
    std::array<std::byte, 4> number{};
    store(number.data(), points_);
    append(chunk, number);
    const std::size_t sizes = chunk.size();
    chunk.resize(sizes + 4 * streams_.size());
    for (std::size_t layer = 0; layer < streams_.size(); ++layer) {
      if (!streams_[layer].isNeeded) continue;
      const std::span<const std::byte> bytes = streams_[layer].coder.finish();
      store(&chunk[sizes + 4 * layer], static_cast<std::uint32_t>(bytes.size()));
      append(chunk, bytes);
    }
  }

private:
  static constexpr std::size_t blockPoints = 1024;
  static constexpr std::size_t zLayer = 1;

  struct Stream {
    GrowingBytes bytes;
    RangeEncoder coder;
    bool isNeeded = false; ///< Some value differs from that of the first point.
  };

  static ReturnLayer<RangeEncoder>::Point pointAt(const std::byte* record) {
    ReturnLayer<RangeEncoder>::Point point;
    point.returns = load<std::uint8_t>(record + 14);
    point.channel = load<std::uint8_t>(record + 15) >> 4 & 3;
    point.x = load<std::uint32_t>(record);
    point.y = load<std::uint32_t>(record + 4);
    point.angle = load<std::uint16_t>(record + 18);
    point.source = load<std::uint16_t>(record + 20);
    point.time = load<std::uint64_t>(record + 22);
    return point;
  }

  void addBlock(std::span<const std::byte> records) {
    const std::size_t count = records.size() / format_.recordLength;
    points_ += static_cast<std::uint32_t>(count);
    encodeReturns(records.data(), count);
    layers_.each([&](std::size_t layer, std::size_t part, auto& coder) {
      encodeLayer(coder, streams_[layer], records.data(), format_.parts[part], count);
    });
  }

  void encodeReturns(const std::byte* record, std::size_t count) {
    RangeEncoder coder = streams_[returnLayer].coder;
    for (std::size_t i = 0; i < count; ++i, record += format_.recordLength) {
      coder.proceed();
      auto point = pointAt(record);
      contexts_[i] = layers_.returns.code<true>(coder, point);
    }
    streams_[returnLayer].coder = coder;
  }

  template <class Layer>
  void encodeLayer(Layer& layer, Stream& stream, const std::byte* records, const LazPart& part,
                   std::size_t count) {
    using Value = typename Layer::Value;
    RangeEncoder coder = stream.coder;
    const auto first = load<Value>(&firstPoint[part.offset]);
    // a colour that is not grey is coded even where it stays the same
    bool isNeeded = !canRepeat(first);
    const std::byte* at = records + part.offset;
    for (std::size_t i = 0; i < count; ++i, at += format_.recordLength) {
      coder.proceed();
      const auto value = load<Value>(at);
      isNeeded |= !isSame(value, first, part);
      layer.code(coder, contexts_[i], value);
    }
    stream.isNeeded |= isNeeded;
    stream.coder = coder;
  }

  template <class Value>
  static bool canRepeat(const Value& value) {
    if constexpr (std::is_same_v<Value, Colour>)
      return value.channels[0] == value.channels[1] && value.channels[0] == value.channels[2];
    return true;
  }

  /// Whether two values are the same to their layer; that of flags leaves the scanner channel out.
  template <class Value>
  static bool isSame(const Value& a, const Value& b, const LazPart& part) {
    if constexpr (std::is_same_v<Value, std::uint8_t>)
      if (part.kind == LazPartKind::Flags) return ((a ^ b) & 0xCF) == 0;
    return a == b;
  }

  const LazFormat& format_;
  PointLayers<RangeEncoder> layers_;
  std::vector<Stream> streams_;
  std::uint32_t points_ = 0;
  std::array<PointContext, blockPoints> contexts_{};
};

LazEncoder::LazEncoder(const LazFormat& format) {
  if (format.isLayered())
    body_ = std::make_unique<LayeredBody>(format);
  else
    body_ = std::make_unique<PointwiseBody>(format);
  recordLength_ = format.recordLength;
}

LazEncoder::~LazEncoder() = default;
LazEncoder::LazEncoder(LazEncoder&&) noexcept = default;
LazEncoder& LazEncoder::operator=(LazEncoder&&) noexcept = default;

void LazEncoder::add(std::span<const std::byte> records) {
  if (body_->firstPoint.empty()) {
    const auto first = records.first(recordLength_);
    body_->firstPoint.assign(first.begin(), first.end());
    body_->start(first);
    records = records.subspan(recordLength_);
  }
  body_->add(records);
}

void LazEncoder::finish(std::vector<std::byte>& chunk) {
  append(chunk, body_->firstPoint);
  body_->finish(chunk);
  body_->firstPoint.clear();
}

} // namespace Zamt::Host
