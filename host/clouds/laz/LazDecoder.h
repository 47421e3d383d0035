#pragma once

#include "host/clouds/laz/LazColumn.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string>

namespace Zamt::Host {

/// Decodes chunks, one after the other, into columns. Of layered points (formats 6 to 10) only those layers
/// are decoded that the columns need: the first one, unless all that is asked for is the same in the whole
/// chunk, and the ones that are asked for.
///
/// A decoder belongs to one thread at a time and is best kept for many chunks, since it keeps the memory of
/// its models: up to about 2 MB, and for each extra byte that is asked for another 2 to 7 KB.
///
/// Any bytes may be given as a chunk. When they are not what a compressor writes, a function gives false and
/// in `damage` the end of a sentence: "its layer of classes ends too early". Columns then hold anything.
class LazDecoder {
public:
  /// `format` must outlive the decoder.
  explicit LazDecoder(const LazFormat& format);
  ~LazDecoder();
  LazDecoder(LazDecoder&&) noexcept;
  LazDecoder& operator=(LazDecoder&&) noexcept;

  /// Decodes the whole chunk of these bytes. `columns` has one entry for each part of the format, with room
  /// for `points` values where it is not null; `points` is at least 1. Where `classContexts` is not empty it
  /// takes one byte for each point of a layered chunk: what LazClassEncoder needs to know of it.
  bool decode(std::span<const std::byte> chunk, std::uint64_t points, std::span<const LazColumn> columns,
              std::string& damage, std::span<std::uint8_t> classContexts = {});

  // The same in steps, for chunks of more points than there is room for.

  /// Starts a chunk, of which the parts with a column that is not null are asked for. The bytes must stay
  /// until it is finished. `known`, which must stay as well, is empty, or the class contexts that were given
  /// of this chunk before; then only classes may be asked for, and the first layer is left alone.
  bool begin(std::span<const std::byte> chunk, std::uint64_t points, std::span<const LazColumn> columns,
             bool wantsClassContexts, std::string& damage, std::span<const std::uint8_t> known = {});

  /// Whether the chunk that was begun has its class contexts decoded, be it for other columns.
  bool decodesClassContexts() const;

  /// Decodes the next `count` points, which must be left, to the columns that were null or not in `begin`.
  bool next(std::size_t count, std::span<const LazColumn> columns, std::string& damage,
            std::uint8_t* classContexts = nullptr);

  /// Behind the last point: whether all was decoded that the chunk holds, and nothing that it does not hold.
  bool finish(std::string& damage);

  /// How many bytes of the chunk the points that were decoded take. Only of formats 0 to 5, whose chunks do
  /// not say how long they are.
  std::size_t consumed() const;

private:
  class Body;
  class PointwiseBody;
  class LayeredBody;
  std::unique_ptr<Body> body_;
};

/// What is said when a chunk can't be decoded. `damage` is the end of the sentence, `number` counts from 0.
std::string chunkDamaged(const std::string& path, std::uint64_t number, std::uint64_t offset,
                         const std::string& damage);

} // namespace Zamt::Host
