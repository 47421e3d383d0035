#pragma once

#include <cstdint>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

// A second opinion on compressed clouds, for tests and as the yardstick of benchmarks: plain, on one thread,
// and without a line of the code that it judges.

namespace Zamt::Testing::Laz {

/// Why a file is not one that can be decoded.
struct LazError : std::runtime_error {
  using std::runtime_error::runtime_error;
};

/// Fields of a point that are coded together.
struct LazItem {
  enum Type : std::uint16_t {
    bytes = 0,
    point10 = 6,
    gpsTime = 7,
    colour = 8,
    wavePacket = 9,
    point14 = 10,
    colour14 = 11,
    colourNir14 = 12,
    wavePacket14 = 13,
    bytes14 = 14
  };
  std::uint16_t type = 0, size = 0, version = 0;
};

/// Points that are decoded together.
struct LazChunk {
  std::uint64_t start = 0, bytes = 0; ///< where it stands in the file; the encoder needs neither
  std::uint64_t points = 0;
};

/// A variable length record.
struct LasRecord {
  std::string userId;
  std::uint16_t id = 0;
  std::uint64_t payloadAt = 0; ///< in the file
  std::string payload;
};

/// A compressed cloud, taken apart.
struct LazFile {
  std::string front; ///< the file up to its points: header, records and any gap
  unsigned format = 0, recordLength = 0;
  std::vector<LasRecord> records; ///< those of `front`, the one of the compressor included
  std::uint32_t chunkSize = 0;    ///< points a chunk; `variable` where each has its own number
  std::vector<LazItem> items;
  std::vector<LazChunk> chunks;
  bool tableUsed = false; ///< the chunks were found by their table, not by walking from one to the next
  bool streamed = false;  ///< the table's place stands behind it and not before the points
  std::string points;     ///< the records of all points, uncompressed
  std::uint64_t backAt = 0;
  std::string back; ///< what follows the points and their table, from `backAt` of the file on

  static constexpr std::uint32_t variable = 0xFFFFFFFF;

  std::uint64_t count() const { return points.size() / recordLength; }
  bool layered() const { return format >= 6; }
};

/// Decodes a whole file, all its points and all their fields. Throws LazError where the file is not sound; a
/// table of chunks that is missing or wrong does no harm where the chunks can be found without.
LazFile decodeLaz(std::string_view bytes);

/// The bytes of a compressed cloud, from `front`, `items`, the numbers of points of `chunks`, `points` and
/// `back`. Offsets in `front` to what lies in `back` follow it. Of a decoded file it makes the file again
/// where whoever wrote that chose the same layers to leave empty and compared times by their bits.
std::string encodeLaz(const LazFile& file);

/// An uncompressed cloud, ready to be encoded: with a record of the compressor and chunks of `chunkSize`
/// points, or of the numbers in `counts` where there are any. `version` is that of the items of the formats 6
/// to 10.
LazFile fromLas(std::string_view las, std::uint32_t chunkSize = 50000,
                const std::vector<std::uint64_t>& counts = {}, std::uint16_t version = 3);

} // namespace Zamt::Testing::Laz
