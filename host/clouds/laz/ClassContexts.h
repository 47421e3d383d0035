#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <vector>

namespace Zamt::Host {

/// What the first layer of a file's chunks says to their layers of classes, kept once it was decoded: classes
/// that are read again, or written, then need no more than their own layer, an eighth of the work. Takes one
/// bit a point, or three where there are several scanner channels, up to `mostBytes` of all chunks together;
/// what has no room is decoded again. Safe to use from several threads at once.
class ClassContexts {
public:
  /// Room for 250 million points of one scanner channel.
  static constexpr std::int64_t mostBytes = std::int64_t{32} << 20;

  explicit ClassContexts(std::size_t chunks) : chunks_(chunks) {}

  /// Keeps what a LazDecoder gave of all points of a chunk, one byte each.
  void keep(std::size_t chunk, std::span<const std::uint8_t> contexts);

  /// Whether what belongs to a chunk is kept.
  bool has(std::size_t chunk) const;

  /// Fills in what was kept of a chunk, as far as layers of classes need it. False if nothing was.
  bool read(std::size_t chunk, std::span<std::uint8_t> contexts) const;

private:
  enum State : std::uint8_t { Unknown, BeingKept, OneChannel, SeveralChannels };

  /// A word for each 64 points that says which are single returns, then such words for both bits of their
  /// channels.
  struct Chunk {
    std::atomic<std::uint8_t> state{Unknown};
    std::unique_ptr<std::uint64_t[]> words;
  };

  std::vector<Chunk> chunks_;
  std::atomic<std::int64_t> room_{mostBytes};
};

} // namespace Zamt::Host
