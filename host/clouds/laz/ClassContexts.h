#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <vector>

namespace Zamt::Host {

/// What is kept of the layers of classes of a file's chunks once they were decoded, since a run looks at
/// classes several times and then writes them: the classes themselves, one byte a point, as long as there is
/// room; and what the first layer says to them, one bit a point, or three where there are several scanner
/// channels, with which their own layer is an eighth of the work. What has no room is decoded again. Safe to
/// use from several threads at once.
class ClassContexts {
public:
  /// Room for the classes of 20 million points, and for the contexts of 160 million of one scanner channel:
  /// enough for most files, and no more than a run may take besides.
  static constexpr std::int64_t mostClassBytes = 20'000'000;
  static constexpr std::int64_t mostContextBytes = 20'000'000;

  explicit ClassContexts(std::size_t chunks) : chunks_(chunks) {}

  /// Keeps what a LazDecoder gave of all points of a chunk: the contexts, and the classes if they were asked
  /// for.
  void keep(std::size_t chunk, std::span<const std::uint8_t> contexts, std::span<const std::byte> classes);

  /// The classes of a chunk of so many points; empty if they are not kept.
  std::span<const std::byte> classes(std::size_t chunk, std::size_t points) const;

  /// Whether the contexts of a chunk are kept.
  bool has(std::size_t chunk) const;

  /// Fills in the contexts of a chunk, as far as layers of classes need them. False if they are not kept.
  bool read(std::size_t chunk, std::span<std::uint8_t> contexts) const;

private:
  enum State : std::uint8_t { Unknown, BeingKept, OneChannel, SeveralChannels };

  struct Chunk {
    std::atomic<std::uint8_t> state{Unknown};
    /// A word for each 64 points that says which are single returns, then such words for both bits of their
    /// channels.
    std::unique_ptr<std::uint64_t[]> words;
    std::unique_ptr<std::byte[]> classes;
  };

  std::vector<Chunk> chunks_;
  std::atomic<std::int64_t> contextRoom_{mostContextBytes};
  std::atomic<std::int64_t> classRoom_{mostClassBytes};
};

} // namespace Zamt::Host
