#pragma once

#include "host/clouds/laz/LazFormat.h"

namespace Zamt::Host {

// The point data of a LAZ file:
//
//   i64 place of the chunk table   from the start of the file; -1 if it was not known, then an i64 behind the
//                                  table may say it; its own place if the file was never finished
//   the chunks                     without a gap
//   u32 version (0), u32 number of chunks, then one stream with the number of points (only where the chunks
//   have different numbers) and of bytes of each chunk
//
// The points of all chunks together are as many as the LAS header says.

/// Points that can be decoded by themselves.
struct LazChunk {
  std::uint64_t firstPoint = 0;
  std::uint32_t points = 0;
  std::uint64_t offset = 0; ///< From the start of the file,
  std::uint64_t size = 0;   ///< and how many bytes; all within the file.
};

/// Where the LAS header says that things are.
struct LazPointData {
  std::uint64_t offset = 0; ///< Of the point data.
  std::uint64_t points = 0;
  std::uint64_t evlrStart = 0; ///< Where the records behind the points start; 0 for none.
};

/// All chunks of a file.
struct LazChunks {
  std::vector<LazChunk> chunks; ///< In the order of the file.
  bool fromTable = false;       ///< Otherwise the file was walked through, since its table can't be used.
  std::uint64_t end = 0;        ///< Behind the chunk table; without one, behind the last chunk.
};

/// Finds the chunks of the file with these bytes. A table that is missing or damaged is done without where
/// all chunks have as many points: then layered chunks are found by their heads, and others are decoded. The
/// memory needed is in proportion to the bytes of the file, whatever its numbers say. False, with a sentence
/// in `error` that names `path`, when the chunks can't be found.
bool findLazChunks(const LazFormat& format, std::span<const std::byte> file, const LazPointData& data,
                   const std::string& path, LazChunks& found, std::string& error);

/// The chunk table of these chunks, of which the number of points and the size count; those without points
/// are left out.
std::vector<std::byte> lazChunkTable(const LazFormat& format, std::span<const LazChunk> chunks);

} // namespace Zamt::Host
