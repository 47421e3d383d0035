#include "host/clouds/las/LasCompatibility.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <string>
#include <string_view>

namespace Zamt::Host {

namespace {

constexpr std::size_t pointwiseClassAt = 15;
constexpr std::uint8_t pointwiseClassBits = 0x1F;

constexpr std::size_t entrySize = 192;
constexpr std::size_t typeAt = 2;
constexpr std::size_t optionsAt = 3;
constexpr std::size_t nameAt = 4;
constexpr std::size_t nameSize = 32;

/// Bytes of a described extra field; 0 for a type that is not defined, behind which nothing can be placed.
std::size_t sizeOfEntry(const std::byte* entry) {
  constexpr std::array<std::size_t, 10> sizes{1, 1, 2, 2, 4, 4, 8, 8, 4, 8};
  const auto type = std::to_integer<std::size_t>(entry[typeAt]);
  if (type == 0) return std::to_integer<std::size_t>(entry[optionsAt]);
  return type > 30 ? 0 : sizes[(type - 1) % 10] * (1 + (type - 1) / 10);
}

/// Where the field of that name and size is, from the start of the extra bytes.
std::optional<std::size_t> placeOf(std::string_view name, std::size_t size,
                                   std::span<const std::byte> record) {
  std::size_t place = 0;
  for (std::size_t at = 0; at + entrySize <= record.size(); at += entrySize) {
    const std::byte* const entry = &record[at];
    const std::size_t bytes = sizeOfEntry(entry);
    const auto* const text = reinterpret_cast<const char*>(entry + nameAt);
    const std::string_view named(text,
                                 static_cast<std::size_t>(std::find(text, text + nameSize, '\0') - text));
    if (named == name && bytes == size) return place;
    if (bytes == 0) return {};
    place += bytes;
  }
  return {};
}

std::size_t lengthWithoutExtraBytes(unsigned pointFormat) {
  constexpr std::array<std::size_t, 6> lengths{20, 28, 26, 34, 57, 63};
  return lengths[pointFormat];
}

} // namespace

std::optional<LasCompatibility> findCompatibility(std::span<const std::byte> extraBytesRecord,
                                                  unsigned pointFormat, std::size_t recordLength) {
  if (pointFormat > 5 || pointFormat == 0 || pointFormat == 2) return {};
  bool isWhole = true;
  const auto find = [&](std::string_view name, std::size_t size) -> std::size_t {
    const auto place = placeOf(name, size, extraBytesRecord);
    const std::size_t at = place ? lengthWithoutExtraBytes(pointFormat) + *place : 0;
    if (!place || at + size > recordLength) isWhole = false;
    return at;
  };
  LasCompatibility found;
  found.scanAngleAt = find("LAS 1.4 scan angle", 2);
  found.returnsAt = find("LAS 1.4 extended returns", 1);
  found.classAt = find("LAS 1.4 classification", 1);
  found.flagsAt = find("LAS 1.4 flags and channel", 1);
  if (!isWhole) return {};
  const std::size_t infraredAt = find("LAS 1.4 NIR band", 2);
  if (isWhole) found.infraredAt = infraredAt;
  return found;
}

std::vector<std::uint8_t> compatibleClasses(const std::byte* records, std::size_t points,
                                            std::size_t recordLength, std::size_t classAt) {
  std::vector<std::uint8_t> classes(points);
  for (std::uint8_t& each : classes) {
    each = compatibleClass(std::to_integer<std::uint8_t>(records[pointwiseClassAt]),
                           std::to_integer<std::uint8_t>(records[classAt]));
    records += recordLength;
  }
  return classes;
}

void setPointwiseClass(std::byte* record, std::optional<std::size_t> compatibleClassAt,
                       std::uint8_t newClass) {
  const bool fits = newClass <= pointwiseClassBits;
  const auto flags = std::to_integer<std::uint8_t>(record[pointwiseClassAt]) & ~unsigned{pointwiseClassBits};
  record[pointwiseClassAt] = static_cast<std::byte>(flags | (fits ? newClass : 0U));
  if (!compatibleClassAt) return;
  std::byte& second = record[*compatibleClassAt];
  if (second != std::byte{0} || !fits) second = static_cast<std::byte>(newClass);
}

} // namespace Zamt::Host
