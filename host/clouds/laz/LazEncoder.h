#pragma once

#include "host/clouds/laz/LazFormat.h"

#include <cstddef>
#include <memory>
#include <span>
#include <vector>

namespace Zamt::Host {

/// Encodes whole point records into chunks, one after the other. What comes out is what other compressors
/// make of the same points, byte for byte, as far as the formats settle it.
///
/// An encoder belongs to one thread at a time and is best kept for many chunks, since it keeps the memory of
/// its models and of the coded bytes of a chunk.
class LazEncoder {
public:
  /// `format` must outlive the encoder.
  explicit LazEncoder(const LazFormat& format);
  ~LazEncoder();
  LazEncoder(LazEncoder&&) noexcept;
  LazEncoder& operator=(LazEncoder&&) noexcept;

  /// Adds points to the chunk: records that lie one after the other, at least one. A chunk takes up to
  /// 2^32 - 1 points.
  void add(std::span<const std::byte> records);

  /// Ends the chunk, which has at least one point, and appends its bytes to `chunk`. The next point starts
  /// another one.
  void finish(std::vector<std::byte>& chunk);

private:
  class Body;
  class PointwiseBody;
  class LayeredBody;
  std::unique_ptr<Body> body_;
  std::size_t recordLength_ = 0;
};

} // namespace Zamt::Host
