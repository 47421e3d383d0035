#include "host/clouds/las/LasLayout.h"

#include "host/clouds/las/LasCompatibility.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <string_view>
#include <unordered_map>

namespace Zamt::Host {

namespace {

constexpr unsigned highestFormat = 10;
constexpr std::uint8_t compressedFormat = 0xC0; ///< Either of these bits of the format marks a LAZ file.
constexpr std::size_t waveformSize = 29;

/// Bytes from the start of an entry of the extra bytes record to its parts.
namespace ExtraAt {
constexpr std::size_t type = 2;
constexpr std::size_t options = 3;
constexpr std::size_t name = 4;
constexpr std::size_t nameLength = 32;
constexpr std::size_t noData = 40;
constexpr std::size_t scale = 112;
constexpr std::size_t origin = 136;
constexpr std::size_t description = 160;
constexpr std::size_t descriptionLength = 32;
} // namespace ExtraAt

constexpr unsigned hasNoData = 1;
constexpr unsigned hasScale = 8;
constexpr unsigned hasOrigin = 16;

/// The text in a field of fixed length, which a NUL ends when it is shorter.
std::string fixedText(const std::byte* at, std::size_t length) {
  const char* const start = reinterpret_cast<const char*>(at);
  return {start, std::find(start, start + length, '\0')};
}

bool hasGpsTime(unsigned format) { return format == 1 || (format >= 3 && format <= 5); }
bool hasColour(unsigned format) {
  return format == 2 || format == 3 || format == 5 || format == 7 || format == 8 || format == 10;
}
bool hasInfrared(unsigned format) { return format == 8 || format == 10; }
bool hasWaveform(unsigned format) { return format == 4 || format == 5 || format == 9 || format == 10; }

LasField plainField(const char* name, FieldType type, std::size_t offset) {
  LasField field;
  field.name = name;
  field.type = type;
  field.offset = offset;
  return field;
}

LasField bitField(const char* name, std::size_t offset, unsigned shift, unsigned bits) {
  LasField field = plainField(name, FieldType::U8, offset);
  field.shift = shift;
  field.bits = bits;
  return field;
}

void addCommonFields(const std::byte* header, std::vector<LasField>& fields) {
  constexpr std::array<const char*, 3> names{"X", "Y", "Z"};
  for (std::size_t axis = 0; axis < 3; ++axis) {
    LasField field = plainField(names[axis], FieldType::I32, 4 * axis);
    field.scale[0] = readAt<double>(header + HeaderAt::scale + 8 * axis);
    field.origin[0] = readAt<double>(header + HeaderAt::origin + 8 * axis);
    fields.push_back(std::move(field));
  }
  fields.push_back(plainField("Intensity", FieldType::U16, 12));
}

void addFieldsOfOldFormats(std::vector<LasField>& fields) {
  fields.push_back(bitField("ReturnNumber", 14, 0, 3));
  fields.push_back(bitField("NumberOfReturns", 14, 3, 3));
  fields.push_back(bitField("ScanDirectionFlag", 14, 6, 1));
  fields.push_back(bitField("EdgeOfFlightLine", 14, 7, 1));
  fields.push_back(bitField("Classification", 15, 0, 5));
  fields.push_back(bitField("Synthetic", 15, 5, 1));
  fields.push_back(bitField("KeyPoint", 15, 6, 1));
  fields.push_back(bitField("Withheld", 15, 7, 1));
  fields.push_back(plainField("ScanAngle", FieldType::I8, 16));
  fields.push_back(plainField("UserData", FieldType::U8, 17));
  fields.push_back(plainField("PointSourceId", FieldType::U16, 18));
}

void addFieldsOfNewFormats(std::vector<LasField>& fields) {
  fields.push_back(bitField("ReturnNumber", 14, 0, 4));
  fields.push_back(bitField("NumberOfReturns", 14, 4, 4));
  fields.push_back(bitField("Synthetic", 15, 0, 1));
  fields.push_back(bitField("KeyPoint", 15, 1, 1));
  fields.push_back(bitField("Withheld", 15, 2, 1));
  fields.push_back(bitField("Overlap", 15, 3, 1));
  fields.push_back(bitField("ScannerChannel", 15, 4, 2));
  fields.push_back(bitField("ScanDirectionFlag", 15, 6, 1));
  fields.push_back(bitField("EdgeOfFlightLine", 15, 7, 1));
  fields.push_back(plainField("Classification", FieldType::U8, 16));
  fields.push_back(plainField("UserData", FieldType::U8, 17));
  fields.push_back(plainField("ScanAngle", FieldType::I16, 18));
  fields.back().scale[0] = 0.006;
  fields.push_back(plainField("PointSourceId", FieldType::U16, 20));
  fields.push_back(plainField("GpsTime", FieldType::F64, 22));
}

void addWaveformFields(std::size_t offset, std::vector<LasField>& fields) {
  fields.push_back(plainField("WavePacketDescriptorIndex", FieldType::U8, offset));
  fields.push_back(plainField("WaveformDataOffset", FieldType::U64, offset + 1));
  fields.push_back(plainField("WaveformPacketSize", FieldType::U32, offset + 9));
  fields.push_back(plainField("ReturnPointWaveformLocation", FieldType::F32, offset + 13));
  fields.push_back(plainField("WaveformXt", FieldType::F32, offset + 17));
  fields.push_back(plainField("WaveformYt", FieldType::F32, offset + 21));
  fields.push_back(plainField("WaveformZt", FieldType::F32, offset + 25));
}

void addStandardFields(const std::byte* header, LasLayout& layout) {
  const unsigned format = layout.pointFormat;
  std::vector<LasField>& fields = layout.fields;
  addCommonFields(header, fields);
  if (format >= 6)
    addFieldsOfNewFormats(fields);
  else
    addFieldsOfOldFormats(fields);
  std::size_t offset = format >= 6 ? 30 : 20;
  if (hasGpsTime(format)) {
    fields.push_back(plainField("GpsTime", FieldType::F64, offset));
    offset += 8;
  }
  if (hasColour(format)) {
    for (const char* name : {"Red", "Green", "Blue"}) {
      fields.push_back(plainField(name, FieldType::U16, offset));
      offset += 2;
    }
  }
  if (hasInfrared(format)) {
    fields.push_back(plainField("Infrared", FieldType::U16, offset));
    offset += 2;
  }
  if (hasWaveform(format)) addWaveformFields(offset, fields);
  layout.classField = static_cast<std::size_t>(
      std::ranges::find(fields, std::string_view("Classification"), &LasField::name) - fields.begin());
  layout.classAt = format >= 6 ? 16 : 15;
  layout.classMask = format >= 6 ? 0xFF : 0x1F;
}

/// A number of one of the three kinds in which the extra bytes record keeps "no data" numbers.
double readAnyNumber(const std::byte* at, FieldType type) {
  switch (type) {
  case FieldType::F32:
  case FieldType::F64: return readAt<double>(at);
  case FieldType::I8:
  case FieldType::I16:
  case FieldType::I32:
  case FieldType::I64: return static_cast<double>(readAt<std::int64_t>(at));
  default: return static_cast<double>(readAt<std::uint64_t>(at));
  }
}

/// Gives every field a name that no other has: an empty one becomes "ExtraBytes", a taken one gets a number.
/// The next number of each name is kept, so that many thousands of equal names stay cheap.
class Names {
public:
  explicit Names(const std::vector<LasField>& fields) {
    for (const LasField& field : fields) nextNumber_.emplace(field.name, 2);
  }
  std::string unique(std::string wanted) {
    if (wanted.empty()) wanted = "ExtraBytes";
    if (nextNumber_.emplace(wanted, 2).second) return wanted;
    unsigned number = nextNumber_[wanted];
    std::string name = wanted + "_" + std::to_string(number++);
    while (!nextNumber_.emplace(name, 2).second) name = wanted + "_" + std::to_string(number++);
    nextNumber_[wanted] = number;
    return name;
  }

private:
  std::unordered_map<std::string, unsigned> nextNumber_;
};

LasField readExtraField(const std::byte* entry, unsigned dataType, std::size_t offset) {
  LasField field;
  const auto options = std::to_integer<unsigned>(entry[ExtraAt::options]);
  field.type = static_cast<FieldType>((dataType - 1) % 10);
  field.components = 1 + (dataType - 1) / 10;
  field.offset = offset;
  field.description = fixedText(entry + ExtraAt::description, ExtraAt::descriptionLength);
  for (std::size_t i = 0; i < std::min<std::size_t>(field.components, field.scale.size()); ++i) {
    if (options & hasNoData) field.noData[i] = readAnyNumber(entry + ExtraAt::noData + 8 * i, field.type);
    if (options & hasScale) field.scale[i] = readAt<double>(entry + ExtraAt::scale + 8 * i);
    if (options & hasOrigin) field.origin[i] = readAt<double>(entry + ExtraAt::origin + 8 * i);
  }
  return field;
}

/// Adds the fields that the extra bytes record describes, as far as the point record reaches. A data type
/// that is not defined has no known size, so that nothing behind it can be placed.
void addExtraFields(std::span<const std::byte> bytes, LasLayout& layout) {
  const LasRecord* const record = layout.findSpecRecord(extraBytesId);
  if (!record) return;
  Names names(layout.fields);
  std::size_t offset = standardRecordLength(layout.pointFormat);
  for (std::size_t at = 0; at + extraEntrySize <= record->length; at += extraEntrySize) {
    const std::byte* const entry = bytes.data() + record->data + at;
    const auto dataType = std::to_integer<unsigned>(entry[ExtraAt::type]);
    if (dataType == 0) { // untyped bytes; the options are their number
      offset += std::to_integer<unsigned>(entry[ExtraAt::options]);
      continue;
    }
    if (dataType > 30) return;
    LasField field = readExtraField(entry, dataType, offset);
    offset += sizeOf(field.type) * field.components;
    if (offset > layout.recordLength) return;
    field.name = names.unique(fixedText(entry + ExtraAt::name, ExtraAt::nameLength));
    layout.fields.push_back(std::move(field));
  }
}

void readClassNames(std::span<const std::byte> bytes, LasLayout& layout) {
  const LasRecord* const record = layout.findSpecRecord(classLookupId);
  if (!record) return;
  std::array<std::string, 256> names;
  for (std::size_t at = 0; at + classEntrySize <= record->length; at += classEntrySize) {
    const std::byte* const entry = bytes.data() + record->data + at;
    std::string& name = names[std::to_integer<std::size_t>(entry[0])];
    if (name.empty()) name = fixedText(entry + 1, longestClassName);
  }
  for (unsigned number = 0; number < names.size(); ++number)
    if (!names[number].empty())
      layout.classNames.push_back({static_cast<std::uint8_t>(number), std::move(names[number])});
}

/// Reads up to `count` records from `at` on, as far as they lie before `end`. Gives the place behind the
/// last.
std::size_t readRecords(std::span<const std::byte> bytes, std::size_t at, std::size_t end,
                        std::uint32_t count, bool extended, std::vector<LasRecord>& records) {
  const std::size_t headSize = extended ? evlrHead : vlrHead;
  for (std::uint32_t i = 0; i < count && at <= end && end - at >= headSize; ++i) {
    const std::byte* const head = bytes.data() + at;
    const std::uint64_t length = extended ? readAt<std::uint64_t>(head + recordLengthAt)
                                          : readAt<std::uint16_t>(head + recordLengthAt);
    if (length > end - at - headSize) break;
    records.push_back({fixedText(head + 2, 16), readAt<std::uint16_t>(head + recordIdAt), extended, at,
                       at + headSize, static_cast<std::size_t>(length)});
    at += headSize + static_cast<std::size_t>(length);
  }
  return at;
}

void readAllRecords(std::span<const std::byte> bytes, LasLayout& layout) {
  const std::byte* const header = bytes.data();
  layout.vlrEnd = readRecords(bytes, layout.headerSize, std::min(layout.pointOffset, bytes.size()),
                              readAt<std::uint32_t>(header + HeaderAt::vlrCount), false, layout.records);
  layout.vlrCount = static_cast<std::uint32_t>(layout.records.size());
  if (layout.versionMinor < 4 || layout.headerSize < headerOf14) return;
  const auto start = readAt<std::uint64_t>(header + HeaderAt::evlrStart);
  if (start < layout.pointOffset || start > bytes.size()) return;
  readRecords(bytes, static_cast<std::size_t>(start), bytes.size(),
              readAt<std::uint32_t>(header + HeaderAt::evlrCount), true, layout.records);
}

/// A scale and origin with which every stored coordinate gives a finite number.
bool coordinatesAreFinite(const std::byte* header) {
  for (std::size_t axis = 0; axis < 3; ++axis) {
    const auto scale = readAt<double>(header + HeaderAt::scale + 8 * axis);
    const auto origin = readAt<double>(header + HeaderAt::origin + 8 * axis);
    if (!std::isfinite(std::abs(scale) * 0x1p31 + std::abs(origin))) return false;
  }
  return true;
}

std::uint64_t pointCount(const std::byte* header, const LasLayout& layout) {
  if (layout.versionMinor >= 4 && layout.headerSize >= headerOf14) {
    const auto count = readAt<std::uint64_t>(header + HeaderAt::count);
    if (count != 0) return count;
  }
  return readAt<std::uint32_t>(header + HeaderAt::legacyCount);
}

/// What is wrong with the start of the file; empty if it is a LAS header.
std::string headerProblem(std::span<const std::byte> bytes, const std::string& path) {
  if (bytes.empty()) return "\"" + path + "\" is empty. Fetch the file again from where it came.";
  if (bytes.size() < 4 || std::memcmp(bytes.data(), "LASF", 4) != 0)
    return "\"" + path + "\" is not a LAS file. Give a file in LAS 1.0 to 1.4.";
  if (bytes.size() < smallestHeader)
    return "\"" + path + "\" ends within its header. Fetch the file again from where it came.";
  const auto major = std::to_integer<unsigned>(bytes[HeaderAt::versionMajor]);
  const auto minor = std::to_integer<unsigned>(bytes[HeaderAt::versionMinor]);
  if (major != 1 || minor > 4)
    return "\"" + path + "\" is in version " + std::to_string(major) + "." + std::to_string(minor) +
           " of LAS, which can't be read. Convert it to LAS 1.4 first.";
  return {};
}

/// What is wrong with the numbers of the header; empty if the points can be read.
std::string numbersProblem(std::span<const std::byte> bytes, const LasLayout& layout,
                           const std::string& path) {
  if (layout.headerSize < smallestHeader || layout.headerSize > bytes.size())
    return headerDamaged(path, "its size can't be " + std::to_string(layout.headerSize) + " bytes");
  if (layout.pointFormat > highestFormat)
    return "\"" + path + "\" has points of format " + std::to_string(layout.pointFormat) +
           ", which can't be read. Convert it to one of the formats 0 to 10 first.";
  const std::size_t least = standardRecordLength(layout.pointFormat);
  if (layout.recordLength < least)
    return headerDamaged(path, "points of format " + std::to_string(layout.pointFormat) + " need at least " +
                                   std::to_string(least) + " bytes, not " +
                                   std::to_string(layout.recordLength));
  if (layout.points != 0 && layout.pointOffset < layout.headerSize)
    return headerDamaged(path, "its points can't start within it");
  if (!coordinatesAreFinite(bytes.data()))
    return headerDamaged(path, "its scales or offsets are not usable numbers");
  return {};
}

/// What is said when the file ends before its points do; empty if they are all there.
std::string truncationProblem(std::size_t size, const LasLayout& layout, const std::string& path) {
  const std::uint64_t room =
      layout.pointOffset < size ? (size - layout.pointOffset) / layout.recordLength : 0;
  if (layout.points <= room) return {};
  return "\"" + path + "\" is cut off: its header says " + std::to_string(layout.points) +
         " points but it holds only " + std::to_string(room) + ". Fetch the file again from where it came.";
}

/// Finds what points of a compatible file have a second time.
void findSecondFields(std::span<const std::byte> bytes, LasLayout& layout) {
  const LasRecord* const extra = layout.findSpecRecord(extraBytesId);
  if (layout.versionMinor >= 4 || !extra || !layout.findRecord(compatibleUserId, compatibleRecordId)) return;
  const auto found =
      findCompatibility(bytes.subspan(extra->data, extra->length), layout.pointFormat, layout.recordLength);
  if (!found) return;
  layout.secondClassAt = found->classAt;
  layout.moreReturnsAt = found->returnsAt;
}

} // namespace

const LasRecord* LasLayout::findRecord(std::string_view userId, std::uint16_t id) const {
  const auto found = std::ranges::find_if(
      records, [&](const LasRecord& record) { return record.id == id && record.userId == userId; });
  return found == records.end() ? nullptr : &*found;
}

std::size_t standardRecordLength(unsigned pointFormat) {
  return (pointFormat >= 6 ? 30U : 20U) + (hasGpsTime(pointFormat) ? 8U : 0U) +
         (hasColour(pointFormat) ? 6U : 0U) + (hasInfrared(pointFormat) ? 2U : 0U) +
         (hasWaveform(pointFormat) ? waveformSize : 0U);
}

std::string headerDamaged(const std::string& path, const std::string& what) {
  return "The header of \"" + path + "\" is damaged: " + what +
         ". Fetch the file again, or have the program that wrote it write it again.";
}

bool hasCompressedPoints(std::span<const std::byte> bytes) {
  if (!headerProblem(bytes, {}).empty()) return false;
  if (readAt<std::uint8_t>(&bytes[HeaderAt::pointFormat]) & compressedFormat) return true;
  LasLayout layout;
  std::string error;
  if (!readFrame(bytes, {}, layout, error)) return false;
  const LasRecord* const record = layout.findRecord(compressionUserId, compressionId);
  return record && (record->length < 2 || readAt<std::uint16_t>(&bytes[record->data]) != 0);
}

bool readFrame(std::span<const std::byte> bytes, const std::string& path, LasLayout& layout,
               std::string& error) {
  error = headerProblem(bytes, path);
  if (!error.empty()) return false;
  const std::byte* const header = bytes.data();
  layout.versionMinor = std::to_integer<unsigned>(header[HeaderAt::versionMinor]);
  layout.headerSize = readAt<std::uint16_t>(header + HeaderAt::headerSize);
  layout.pointOffset = readAt<std::uint32_t>(header + HeaderAt::pointOffset);
  layout.recordLength = readAt<std::uint16_t>(header + HeaderAt::recordLength);
  layout.pointFormat = readAt<std::uint8_t>(header + HeaderAt::pointFormat) & ~unsigned{compressedFormat};
  if (layout.headerSize >= smallestHeader && layout.headerSize <= bytes.size()) {
    layout.points = pointCount(header, layout);
    readAllRecords(bytes, layout);
  }
  error = numbersProblem(bytes, layout, path);
  return error.empty();
}

void readFields(std::span<const std::byte> bytes, std::uint64_t pointsEnd, LasLayout& layout) {
  layout.pointsEnd = pointsEnd;
  std::erase_if(layout.records,
                [&](const LasRecord& record) { return record.extended && record.head < pointsEnd; });
  addStandardFields(bytes.data(), layout);
  addExtraFields(bytes, layout);
  readClassNames(bytes, layout);
  findSecondFields(bytes, layout);
}

bool recordsClearPoints(std::span<const std::byte> bytes, const LasLayout& layout, const std::string& path,
                        std::string& error) {
  const auto isInside = [&](std::size_t at) {
    const auto start = readAt<std::uint64_t>(&bytes[at]);
    return start >= layout.pointOffset && start < layout.pointsEnd;
  };
  const bool hasWaveforms = layout.versionMinor >= 3 && layout.headerSize >= HeaderAt::evlrStart;
  const bool hasEvlrs = layout.versionMinor >= 4 && layout.headerSize >= headerOf14 &&
                        readAt<std::uint32_t>(&bytes[HeaderAt::evlrCount]) != 0;
  if (!(hasWaveforms && isInside(HeaderAt::waveformStart)) && !(hasEvlrs && isInside(HeaderAt::evlrStart)))
    return true;
  error = "The header of \"" + path +
          "\" says that records begin inside of the points. Write it anew with the program it came from.";
  return false;
}

bool readLayout(std::span<const std::byte> bytes, const std::string& path, LasLayout& layout,
                std::string& error) {
  if (!readFrame(bytes, path, layout, error)) return false;
  error = truncationProblem(bytes.size(), layout, path);
  if (!error.empty()) return false;
  readFields(bytes, layout.pointOffset + layout.points * layout.recordLength, layout);
  return true;
}

} // namespace Zamt::Host
