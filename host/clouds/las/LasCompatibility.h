#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

namespace Zamt::Host {

// Points of formats 6 to 10 can be stored in a LAS 1.2 or 1.3 file, as formats 1, 3, 4 or 5 with what these
// have no room for in extra bytes. Such a file has a record of user id "lascompatible" and id 22204, and its
// extra bytes have the names below. A class is then in two places: in the five bits of the old format, which
// are 0 for a class above 31, and in an extra byte, which some programs leave 0 for a class up to 31.

inline constexpr const char* compatibleUserId = "lascompatible";
inline constexpr std::uint16_t compatibleRecordId = 22204;

/// Where the extra bytes of such points are, from the start of the point record.
struct LasCompatibility {
  std::size_t scanAngleAt = 0; ///< i16: what the angle in whole degrees leaves, in 0.006 degrees.
  std::size_t returnsAt = 0;   ///< u8: to be added to the return number (high 4 bits) and the number of
                               ///< returns.
  std::size_t classAt = 0;     ///< u8: the class, unless it is 0.
  std::size_t flagsAt = 0;     ///< u8: bit 0 overlap, bits 1 and 2 scanner channel.
  std::optional<std::size_t> infraredAt; ///< u16.
};

/// Finds them in the data of the record that describes the extra bytes ("LASF_Spec" 4). Empty when points of
/// that format and length are not of this kind. Whether the file has the record that says so, and a version
/// below 1.4, is the caller's to ask.
std::optional<LasCompatibility> findCompatibility(std::span<const std::byte> extraBytesRecord,
                                                  unsigned pointFormat, std::size_t recordLength);

/// The class of a point that says it in these two bytes: the one with the flags, and the extra one.
inline std::uint8_t compatibleClass(std::uint8_t classByte, std::uint8_t extraByte) {
  return extraByte != 0 ? extraByte : classByte & 0x1F;
}

/// The classes of `points` records that lie one after the other.
std::vector<std::uint8_t> compatibleClasses(const std::byte* records, std::size_t points,
                                            std::size_t recordLength, std::size_t classAt);

/// Gives a point record of formats 0 to 5 another class, and its second class where it has one. What programs
/// that read only one of them see stays right.
void setPointwiseClass(std::byte* record, std::optional<std::size_t> compatibleClassAt,
                       std::uint8_t newClass);

} // namespace Zamt::Host
