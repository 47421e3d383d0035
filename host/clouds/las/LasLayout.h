#pragma once

#include "host/clouds/ClassName.h"
#include "host/clouds/Field.h"

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace Zamt::Host {

// The layout of a LAS file, as the ASPRS gives it (LAS 1.0 to 1.4 R15). All numbers are little endian.
//
//   header             227 bytes in 1.0 to 1.2, 235 in 1.3, 375 in 1.4; `HeaderAt` gives the places
//   VLRs               54 bytes of head, then their data; as many as the header says
//   anything           (1.0 puts two signature bytes here)
//   point records      `point count` times `record length` bytes, from `offset to point data` on
//   anything           waveform packets, and in 1.4
//   EVLRs              60 bytes of head, then their data
//
// The head of a VLR: u16 reserved, char[16] user id, u16 record id, u16 length, char[32] description. That of
// an EVLR has a u64 as length.
//
// Point records. Formats 0 to 5 share their first 20 bytes, 6 to 10 their first 30:
//
//   0-5   i32 X, Y, Z; u16 intensity; u8 with return number (3 bits), number of returns (3), scan direction,
//         edge of flight line; u8 with class (5 bits), synthetic, key point, withheld; i8 scan angle rank in
//         degrees; u8 user data; u16 point source id
//   6-10  i32 X, Y, Z; u16 intensity; u8 with return number (4 bits), number of returns (4); u8 with
//         synthetic, key point, withheld, overlap, scanner channel (2 bits), scan direction, edge of flight
//         line; u8 class; u8 user data; i16 scan angle in 0.006 degrees; u16 point source id; f64 GPS time
//
// followed, each where the format has it, by: f64 GPS time (1, 3, 4, 5), u16 red, green, blue (2, 3, 5, 7, 8,
// 10), u16 infrared (8, 10) and the waveform packet (4, 5, 9, 10): u8 descriptor index, u64 byte offset,
// u32 packet size, f32 return point location, f32 x(t), y(t), z(t). Bytes of the record behind that are extra
// bytes, which the record "LASF_Spec" 4 may describe.
//
// A table of places was preferred to packed structs: the records are not aligned, and a table can be walked.

/// Bytes from the start of the file to the parts of the header that are used.
namespace HeaderAt {
inline constexpr std::size_t globalEncoding = 6;
inline constexpr std::size_t versionMajor = 24;
inline constexpr std::size_t versionMinor = 25;
inline constexpr std::size_t headerSize = 94;
inline constexpr std::size_t pointOffset = 96;
inline constexpr std::size_t vlrCount = 100;
inline constexpr std::size_t pointFormat = 104;
inline constexpr std::size_t recordLength = 105;
inline constexpr std::size_t legacyCount = 107;
inline constexpr std::size_t legacyByReturn = 111;
inline constexpr std::size_t scale = 131;
inline constexpr std::size_t origin = 155;
inline constexpr std::size_t ranges = 179; ///< Maximum and minimum of x, then of y, then of z.
inline constexpr std::size_t waveformStart = 227;
inline constexpr std::size_t evlrStart = 235;
inline constexpr std::size_t evlrCount = 243;
inline constexpr std::size_t count = 247;
inline constexpr std::size_t byReturn = 255;
} // namespace HeaderAt

inline constexpr std::size_t smallestHeader = 227;
inline constexpr std::size_t headerOf14 = 375;
inline constexpr std::size_t vlrHead = 54;
inline constexpr std::size_t evlrHead = 60;
inline constexpr std::size_t recordIdAt = 18;     ///< Of a VLR or EVLR head.
inline constexpr std::size_t recordLengthAt = 20; ///< Likewise.
inline constexpr const char* specUserId = "LASF_Spec";
/// Of the record that says how points are compressed, if they are.
inline constexpr const char* compressionUserId = "laszip encoded";
inline constexpr std::uint16_t compressionId = 22204;
inline constexpr std::uint16_t classLookupId = 0;
inline constexpr std::uint16_t extraBytesId = 4;
inline constexpr std::size_t classEntrySize = 1 + longestClassName; ///< u8 number, char[15] name.
inline constexpr std::size_t classEntries = 256;
inline constexpr std::size_t extraEntrySize = 192;

static_assert(std::endian::native == std::endian::little, "LAS is read in place and is little endian");

/// The number that lies at `at`, aligned or not.
template <class T>
T readAt(const std::byte* at) {
  T value;
  std::memcpy(&value, at, sizeof(T));
  return value;
}

/// Puts a number where it need not be aligned.
template <class T>
void writeAt(std::byte* at, T value) {
  std::memcpy(at, &value, sizeof(T));
}

/// A field as it lies in a point record.
struct LasField : Field {
  std::size_t offset = 0; ///< Bytes from the start of the record to the first component.
  unsigned shift = 0;     ///< For values packed into bits: the lowest bit,
  unsigned bits = 0;      ///< and how many; 0 for a value that has its bytes to itself.
};

/// A record beside the points: a VLR or an EVLR.
struct LasRecord {
  std::string userId;
  std::uint16_t id = 0;
  bool extended = false;  ///< An EVLR.
  std::size_t head = 0;   ///< Where its head starts in the file,
  std::size_t data = 0;   ///< where its data,
  std::size_t length = 0; ///< and how long that is; all within the file.
};

/// Where things are in one LAS file.
struct LasLayout {
  unsigned versionMinor = 0;
  unsigned pointFormat = 0;
  std::size_t headerSize = 0;
  std::size_t pointOffset = 0;
  std::size_t recordLength = 0;
  std::uint64_t points = 0;
  std::uint64_t pointsEnd = 0; ///< Where the bytes end that store them.
  std::size_t classAt = 0;     ///< Bytes from the start of a point record to its class,
  std::uint8_t classMask = 0;  ///< and the bits of that byte which hold it; they are the lowest.
  /// Where points of a compatible file (see LasCompatibility) have their class a second time.
  std::optional<std::size_t> secondClassAt;
  std::optional<std::size_t> moreReturnsAt; ///< Where those have what their return numbers lack.
  std::size_t classField = 0;               ///< The place of the class in `fields`.
  std::vector<LasField> fields;
  std::vector<LasRecord> records; ///< Those that are sound: the first broken one ends the list.
  std::size_t vlrEnd = 0;         ///< Behind the last sound VLR.
  std::uint32_t vlrCount = 0;     ///< How many VLRs are sound.
  std::vector<ClassName> classNames;

  /// The highest class that a point can hold.
  unsigned highestClass() const { return secondClassAt ? 0xFF : classMask; }

  /// The first record of that user id and id; null if there is none.
  const LasRecord* findRecord(std::string_view userId, std::uint16_t id) const;

  /// The first record of that id that the standard itself defines; null if there is none.
  const LasRecord* findSpecRecord(std::uint16_t id) const { return findRecord(specUserId, id); }
};

/// The length of the records of a point format (0 to 10) without extra bytes.
std::size_t standardRecordLength(unsigned pointFormat);

/// Whether the file with these bytes is a LAS file with compressed points, sound or not.
bool hasCompressedPoints(std::span<const std::byte> bytes);

/// Reads the layout of the LAS file with these bytes. False, with a sentence in `error` that names `path`,
/// when its points can't be read.
bool readLayout(std::span<const std::byte> bytes, const std::string& path, LasLayout& layout,
                std::string& error);

// The same in two steps, for files that differ from LAS in how they store the points.

/// Reads the header and the records, and checks all of them that does not depend on where the points are.
bool readFrame(std::span<const std::byte> bytes, const std::string& path, LasLayout& layout,
               std::string& error);

/// Reads what the records say of the points and their classes, those before `pointsEnd` and the ones behind.
/// An EVLR that begins inside of the points is no record.
void readFields(std::span<const std::byte> bytes, std::uint64_t pointsEnd, LasLayout& layout);

/// Whether no record is said to begin inside of the points, where one of the two would be damaged by a change
/// of the other. False with a sentence in `error` that names `path`.
bool recordsClearPoints(std::span<const std::byte> bytes, const LasLayout& layout, const std::string& path,
                        std::string& error);

/// What is said of a file whose header can't be true. `what` is the end of a sentence.
std::string headerDamaged(const std::string& path, const std::string& what);

} // namespace Zamt::Host
