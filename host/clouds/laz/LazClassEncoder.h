#pragma once

#include "host/clouds/laz/LazDecoder.h"
#include "host/clouds/laz/LazEncoder.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace Zamt::Host {

/// Makes chunks anew with other classes and everything else as it was.
///
/// Of layered points (formats 6 to 10) only the layer of classes is encoded; it depends on itself and on what
/// the first layer says of each point, which a LazDecoder gives as class contexts. All other bytes are
/// copied. In the formats 0 to 5 every byte of a chunk depends on all that comes before, so that the whole
/// chunk is decoded and encoded.
///
/// Belongs to one thread at a time and is best kept for many chunks.
class LazClassEncoder {
public:
  /// `format` must outlive the encoder. `compatibleClassAt` is where in the record points of formats 0 to 5
  /// have a second class, of the kind that LasCompatibility tells of.
  explicit LazClassEncoder(const LazFormat& format, std::optional<std::size_t> compatibleClassAt = {});
  ~LazClassEncoder();
  LazClassEncoder(LazClassEncoder&&) noexcept;
  LazClassEncoder& operator=(LazClassEncoder&&) noexcept;

  /// Appends to `changed` the chunk of these bytes with `classes`, one for each of its points. In formats 0
  /// to 5 a class is at most 31, unless there is the second one, and the three flags beside it stay.
  /// `classContexts` is what the decoder gave of this chunk; when it is empty, it is decoded anew. False,
  /// with the end of a sentence in `damage` as LazDecoder gives it, when the chunk can't be decoded.
  bool encode(std::span<const std::byte> chunk, std::span<const std::uint8_t> classes,
              std::span<const std::uint8_t> classContexts, std::vector<std::byte>& changed,
              std::string& damage);

private:
  struct Layer;
  bool encodeLayer(std::span<const std::byte> chunk, std::span<const std::uint8_t> classes,
                   std::span<const std::uint8_t> classContexts, std::vector<std::byte>& changed,
                   std::string& damage);
  bool encodeAll(std::span<const std::byte> chunk, std::span<const std::uint8_t> classes,
                 std::vector<std::byte>& changed, std::string& damage);
  void setClasses(std::span<std::byte> records, std::span<const std::uint8_t> classes) const;
  LazDecoder& decoder();

  const LazFormat* format_;
  std::optional<std::size_t> compatibleClassAt_;
  std::unique_ptr<Layer> layer_;
  std::optional<LazDecoder> decoderOfChunks_; ///< Only once one is needed.
  std::optional<LazEncoder> encoder_;
};

} // namespace Zamt::Host
