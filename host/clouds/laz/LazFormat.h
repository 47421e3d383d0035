#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

namespace Zamt::Host {

// How the points of a LAZ file are coded is said by one record beside them, the LAZ record: user id "laszip
// encoded", record id 22204. Its data:
//
//   u16 compressor     2 for chunks in one stream (point formats 0 to 5), 3 for chunks in layers (6 to 10)
//   u16 coder          0
//   u8, u8, u16        version of the program that wrote it; says nothing
//   u32 options        says nothing
//   u32 chunk size     points in each chunk but the last; 0xFFFFFFFF or 0 if each has its own number
//   i64, i64           number and place of records that the LAS header does not count; -1 for none
//   u16 items          then for each u16 type, u16 size, u16 version
//
// The items are the groups of fields of a point that are coded together, in the order of the record.

inline constexpr const char* lazUserId = "laszip encoded";
inline constexpr std::uint16_t lazRecordId = 22204;

/// Bytes from the start of the LAZ record's data to where the records start that the header does not count.
inline constexpr std::size_t lazSpecialRecordsAt = 24;

enum class LazItemType : std::uint16_t {
  Bytes = 0,
  Point10 = 6,
  Time11 = 7,
  Colour12 = 8,
  WavePacket13 = 9,
  Point14 = 10,
  Colour14 = 11,
  ColourInfrared14 = 12,
  WavePacket14 = 13,
  Bytes14 = 14
};

/// A group of fields that are coded together.
struct LazItem {
  LazItemType type = LazItemType::Point10;
  std::uint16_t size = 0;
  std::uint16_t version = 0;
};

/// What a part of a point holds, as the point record stores it.
enum class LazPartKind : std::uint8_t {
  X,
  Y,
  Z,
  Intensity,
  Returns,        ///< In formats 0 to 5 with the two flags of the scan.
  Flags,          ///< With the scanner channel; formats 6 to 10.
  Classification, ///< In formats 0 to 5 with three flags.
  UserData,
  ScanAngle,
  PointSource,
  GpsTime,
  Colour, ///< Red, green and blue.
  Infrared,
  WavePacket,
  ExtraByte ///< One part for each of them.
};

/// Bytes of a point that can be asked for by themselves.
struct LazPart {
  LazPartKind kind = LazPartKind::X;
  std::uint16_t offset = 0; ///< From the start of the point record,
  std::uint16_t size = 0;
};

/// How the points of one file are coded.
struct LazFormat {
  static constexpr std::uint32_t defaultChunkSize = 50000;

  unsigned pointFormat = 0;
  std::size_t recordLength = 0;
  std::uint32_t chunkSize = defaultChunkSize; ///< 0 if each chunk has its own number of points.
  std::vector<LazItem> items;
  std::vector<LazPart> parts;       ///< In the order of the record, which they cover without a gap.
  std::int64_t specialRecords = -1; ///< Where records start that the header does not count; -1 for none.

  bool isLayered() const { return pointFormat >= 6; }
  bool isVariable() const { return chunkSize == 0; }

  /// How many layers a chunk has; 0 when it has none.
  std::size_t layerCount() const;

  /// The fewest bytes that a chunk can have.
  std::size_t smallestChunk() const;

  /// The part in which a byte of the point record lies.
  std::size_t partAt(std::size_t offset) const;
};

/// Reads the LAZ record with this data, for points of that format (0 to 10, without the mark of compression)
/// and record length. False, with a sentence in `error` that names `path`, when the points can't be decoded.
bool readLazFormat(std::span<const std::byte> data, unsigned pointFormat, std::size_t recordLength,
                   const std::string& path, LazFormat& format, std::string& error);

/// The format in which points are written anew. `recordLength` must be at least what the point format (0 to
/// 10) needs; `chunkSize` is 0 for chunks of different numbers of points.
LazFormat newLazFormat(unsigned pointFormat, std::size_t recordLength,
                       std::uint32_t chunkSize = LazFormat::defaultChunkSize);

/// The data of the LAZ record that says it.
std::vector<std::byte> lazRecordOf(const LazFormat& format);

/// How many points one byte of coded points can hold at most. Each takes at least the symbols that say that
/// nothing changed, and the likeliest symbol of the models still takes a little.
inline constexpr std::uint64_t mostPointsPerByte = 2048;

} // namespace Zamt::Host
