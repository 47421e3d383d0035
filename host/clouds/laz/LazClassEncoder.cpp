#include "host/clouds/laz/LazClassEncoder.h"

#include "host/clouds/las/LasCompatibility.h"
#include "host/clouds/laz/PointLayers.h"

#include <algorithm>

namespace Zamt::Host {

using namespace Laz;

namespace {

constexpr std::size_t layeredClassAt = 16;

void append(std::vector<std::byte>& to, std::span<const std::byte> bytes) {
  to.insert(to.end(), bytes.begin(), bytes.end());
}

} // namespace

struct LazClassEncoder::Layer {
  ChannelLayer<RangeEncoder, ClassLayer<RangeEncoder>> coder;
  GrowingBytes bytes;

  /// The stream of these classes; empty where all are the same.
  std::span<const std::byte> encode(std::span<const std::uint8_t> classes,
                                    std::span<const std::uint8_t> contexts) {
    if (std::ranges::all_of(classes, [&](std::uint8_t each) { return each == classes[0]; })) return {};
    RangeEncoder stream;
    stream.start(bytes);
    coder.start(contexts[0], classes[0]);
    for (std::size_t i = 1; i < classes.size(); ++i) {
      stream.proceed();
      coder.code(stream, contexts[i], classes[i]);
    }
    return stream.finish();
  }
};

LazClassEncoder::LazClassEncoder(const LazFormat& format, std::optional<std::size_t> compatibleClassAt)
    : format_(&format), compatibleClassAt_(compatibleClassAt) {
  if (format_->isLayered())
    layer_ = std::make_unique<Layer>();
  else
    encoder_.emplace(*format_);
}

LazClassEncoder::~LazClassEncoder() = default;
LazClassEncoder::LazClassEncoder(LazClassEncoder&&) noexcept = default;
LazClassEncoder& LazClassEncoder::operator=(LazClassEncoder&&) noexcept = default;

bool LazClassEncoder::encode(std::span<const std::byte> chunk, std::span<const std::uint8_t> classes,
                             std::span<const std::uint8_t> classContexts, std::vector<std::byte>& changed,
                             std::string& damage) {
  return format_->isLayered() ? encodeLayer(chunk, classes, classContexts, changed, damage)
                              : encodeAll(chunk, classes, changed, damage);
}

bool LazClassEncoder::encodeLayer(std::span<const std::byte> chunk, std::span<const std::uint8_t> classes,
                                  std::span<const std::uint8_t> classContexts,
                                  std::vector<std::byte>& changed, std::string& damage) {
  std::vector<std::uint8_t> decoded;
  if (classContexts.empty()) {
    decoded.resize(classes.size());
    const std::vector<LazColumn> none(format_->parts.size());
    if (!decoder().decode(chunk, classes.size(), none, damage, decoded)) return false;
    classContexts = decoded;
  }
  LayeredChunk old;
  if (!readLayeredChunk(*format_, chunk, old) || old.size != chunk.size()) {
    damage = "the sizes of its layers are not those of the chunk";
    return false;
  }
  const std::span<const std::byte> stream = layer_->encode(classes, classContexts);
  const std::size_t start = changed.size();
  const auto before = static_cast<std::size_t>(old.layers[classLayer].data() - chunk.data());
  append(changed, chunk.first(before));
  changed[start + layeredClassAt] = static_cast<std::byte>(classes[0]);
  store(&changed[start + format_->recordLength + 4 + 4 * classLayer],
        static_cast<std::uint32_t>(stream.size()));
  append(changed, stream);
  append(changed, chunk.subspan(before + old.layers[classLayer].size()));
  return true;
}

bool LazClassEncoder::encodeAll(std::span<const std::byte> chunk, std::span<const std::uint8_t> classes,
                                std::vector<std::byte>& changed, std::string& damage) {
  constexpr std::size_t blockPoints = 1024;
  std::vector<std::byte> records(std::min(blockPoints, classes.size()) * format_->recordLength);
  const std::vector<LazColumn> columns = recordColumns(*format_, records.data());
  if (!decoder().begin(chunk, classes.size(), columns, false, damage)) return false;
  for (std::size_t done = 0; done < classes.size();) {
    const std::size_t count = std::min(blockPoints, classes.size() - done);
    if (!decoder().next(count, columns, damage)) return false;
    const std::span<std::byte> block = std::span(records).first(count * format_->recordLength);
    setClasses(block, classes.subspan(done, count));
    encoder_->add(block);
    done += count;
  }
  if (!decoder().finish(damage)) return false;
  encoder_->finish(changed);
  return true;
}

void LazClassEncoder::setClasses(std::span<std::byte> records, std::span<const std::uint8_t> classes) const {
  for (std::size_t i = 0; i < classes.size(); ++i)
    setPointwiseClass(&records[i * format_->recordLength], compatibleClassAt_, classes[i]);
}

LazDecoder& LazClassEncoder::decoder() {
  if (!decoderOfChunks_) decoderOfChunks_.emplace(*format_);
  return *decoderOfChunks_;
}

} // namespace Zamt::Host
