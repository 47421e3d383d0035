#pragma once

#include "files/AtomicFile.h"
#include "host/clouds/laz/LazChunks.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

namespace Zamt::Host {

/// Where the chunks come from that are written. Asked by several threads at once.
class LazChunkMaker {
public:
  virtual ~LazChunkMaker() = default;

  /// The bytes of a chunk that is copied as it is; those of chunks that follow one another do so as well.
  /// Empty for one that is made.
  virtual std::span<const std::byte> original(std::size_t chunk) const = 0;

  /// Makes the bytes of a chunk. False with a sentence in `problem`.
  virtual bool make(std::size_t chunk, std::vector<std::byte>& bytes, std::string& problem) = 0;
};

/// Writes the point data of a LAZ file from `start` on: chunks made side by side, a few at a time, each
/// written once the sizes of all before it are known, and their table. `chunks` have their points, and get
/// their places; `end` is then the place behind the table. False with a sentence in `error`.
bool writeLazChunks(const LazFormat& format, LazChunkMaker& maker, std::uint64_t start, AtomicFile& file,
                    std::vector<LazChunk>& chunks, std::uint64_t& end, std::string& error);

} // namespace Zamt::Host
