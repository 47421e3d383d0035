#include "host/clouds/las/LasBuilder.h"

#include "files/AtomicFile.h"
#include "host/clouds/BlockTable.h"
#include "host/clouds/las/LasLayout.h"

#include <algorithm>
#include <atomic>
#include <cmath>
#include <limits>
#include <mutex>
#include <oneapi/tbb/blocked_range.h>
#include <oneapi/tbb/parallel_for.h>
#include <type_traits>

namespace Zamt::Host {

namespace {

constexpr std::size_t longestFieldName = 32;
constexpr std::uint16_t usesWkt = 16; ///< Bit of the global encoding that the formats from 6 on ask for.

/// What the header says of all points together.
struct Summary {
  std::array<std::int32_t, 3> low;
  std::array<std::int32_t, 3> high;
  std::array<std::uint64_t, 15> byReturn{};

  Summary() {
    low.fill(std::numeric_limits<std::int32_t>::max());
    high.fill(std::numeric_limits<std::int32_t>::min());
  }
  void add(const Summary& other) {
    for (std::size_t axis = 0; axis < 3; ++axis) {
      low[axis] = std::min(low[axis], other.low[axis]);
      high[axis] = std::max(high[axis], other.high[axis]);
    }
    for (std::size_t i = 0; i < byReturn.size(); ++i) byReturn[i] += other.byReturn[i];
  }
};

/// The nearest number of the type; 0 for what is no number.
template <class T>
T nearest(double value) {
  if constexpr (std::is_floating_point_v<T>) {
    return static_cast<T>(value);
  } else {
    const double rounded = std::nearbyint(value);
    if (!(rounded > static_cast<double>(std::numeric_limits<T>::min())))
      return std::isnan(rounded) ? T{0} : std::numeric_limits<T>::min();
    if (rounded >= static_cast<double>(std::numeric_limits<T>::max())) return std::numeric_limits<T>::max();
    return static_cast<T>(rounded);
  }
}

void writeNumber(std::byte* at, FieldType type, double value) {
  switch (type) {
  case FieldType::U8: return writeAt(at, nearest<std::uint8_t>(value));
  case FieldType::I8: return writeAt(at, nearest<std::int8_t>(value));
  case FieldType::U16: return writeAt(at, nearest<std::uint16_t>(value));
  case FieldType::I16: return writeAt(at, nearest<std::int16_t>(value));
  case FieldType::U32: return writeAt(at, nearest<std::uint32_t>(value));
  case FieldType::I32: return writeAt(at, nearest<std::int32_t>(value));
  case FieldType::U64: return writeAt(at, nearest<std::uint64_t>(value));
  case FieldType::I64: return writeAt(at, nearest<std::int64_t>(value));
  case FieldType::F32: return writeAt(at, nearest<float>(value));
  case FieldType::F64: return writeAt(at, value);
  }
}

std::byte packed(unsigned value) { return static_cast<std::byte>(value & 0xFFU); }

void writeOldPart(std::byte* at, const NewPoint& point) {
  at[14] = packed((point.returnNumber & 7U) | (point.numberOfReturns & 7U) << 3U);
  at[15] = packed(point.classification & 0x1FU);
  writeAt(at + 16, nearest<std::int8_t>(point.scanAngle));
  writeAt(at + 17, point.userData);
  writeAt(at + 18, point.pointSourceId);
}

void writeNewPart(std::byte* at, const NewPoint& point) {
  at[14] = packed((point.returnNumber & 15U) | (point.numberOfReturns & 15U) << 4U);
  writeAt(at + 16, point.classification);
  writeAt(at + 17, point.userData);
  writeAt(at + 18, nearest<std::int16_t>(point.scanAngle / 0.006));
  writeAt(at + 20, point.pointSourceId);
}

/// Makes the records of points, and the bytes in front of them.
class Builder {
public:
  explicit Builder(const NewCloud& cloud)
      : description_(cloud), length_(standardRecordLength(cloud.pointFormat)) {
    const unsigned format = cloud.pointFormat;
    if (format >= 6) gpsAt_ = 22;
    if (format == 1 || format == 3) gpsAt_ = 20;
    if (format == 2) colourAt_ = 20;
    if (format == 3) colourAt_ = 28;
    if (format >= 7) colourAt_ = 30;
    for (const NewField& field : cloud.extraFields) {
      for (unsigned component = 0; component < field.components; ++component) {
        extra_.push_back({length_, field.type});
        length_ += sizeOf(field.type);
      }
    }
  }

  std::size_t recordLength() const { return length_; }
  std::size_t extraCount() const { return extra_.size(); }
  std::size_t pointOffset() const { return headerOf14 + records().size(); }

  void writePoint(const NewPoint& point, std::byte* at, Summary& summary) const;
  std::vector<std::byte> head(std::uint64_t points, const Summary& summary) const;

private:
  std::vector<std::byte> records() const;
  void writeRanges(std::byte* header, const Summary& summary) const;

  const NewCloud& description_;
  std::size_t length_;
  std::size_t gpsAt_ = 0;    ///< 0 for a format without it,
  std::size_t colourAt_ = 0; ///< likewise.
  struct Component {
    std::size_t at;
    FieldType type;
  };
  std::vector<Component> extra_;
};

void Builder::writePoint(const NewPoint& point, std::byte* at, Summary& summary) const {
  for (std::size_t axis = 0; axis < 3; ++axis) {
    const auto stored =
        nearest<std::int32_t>((point.position[axis] - description_.origin[axis]) / description_.scale[axis]);
    summary.low[axis] = std::min(summary.low[axis], stored);
    summary.high[axis] = std::max(summary.high[axis], stored);
    writeAt(at + 4 * axis, stored);
  }
  writeAt(at + 12, point.intensity);
  if (description_.pointFormat >= 6)
    writeNewPart(at, point);
  else
    writeOldPart(at, point);
  if (gpsAt_ != 0) writeAt(at + gpsAt_, point.gpsTime);
  if (colourAt_ != 0) writeAt(at + colourAt_, point.colour);
  if (description_.pointFormat == 8) writeAt(at + 36, point.infrared);
  for (std::size_t i = 0; i < extra_.size(); ++i)
    writeNumber(at + extra_[i].at, extra_[i].type, point.extra[i]);
  if (point.returnNumber >= 1 && point.returnNumber <= 15) ++summary.byReturn[point.returnNumber - 1U];
}

void addRecord(std::uint16_t id, const std::vector<std::byte>& data, std::vector<std::byte>& records) {
  std::vector<std::byte> head(vlrHead);
  std::memcpy(head.data() + 2, specUserId, std::strlen(specUserId));
  writeAt(head.data() + recordIdAt, id);
  writeAt(head.data() + recordLengthAt, static_cast<std::uint16_t>(data.size()));
  records.insert(records.end(), head.begin(), head.end());
  records.insert(records.end(), data.begin(), data.end());
}

std::vector<std::byte> Builder::records() const {
  std::vector<std::byte> result;
  if (!description_.extraFields.empty()) {
    std::vector<std::byte> data(description_.extraFields.size() * extraEntrySize);
    for (std::size_t i = 0; i < description_.extraFields.size(); ++i) {
      std::byte* const entry = data.data() + i * extraEntrySize;
      const NewField& field = description_.extraFields[i];
      entry[2] = static_cast<std::byte>(static_cast<unsigned>(field.type) + 1 + 10 * (field.components - 1));
      std::memcpy(entry + 4, field.name.data(), field.name.size());
    }
    addRecord(extraBytesId, data, result);
  }
  if (!description_.classNames.empty()) {
    std::vector<std::byte> data(classEntries * classEntrySize);
    for (std::size_t i = 0; i < description_.classNames.size(); ++i) {
      const ClassName& entry = description_.classNames[i];
      data[i * classEntrySize] = static_cast<std::byte>(entry.number);
      std::memcpy(&data[i * classEntrySize + 1], entry.name.data(), entry.name.size());
    }
    addRecord(classLookupId, data, result);
  }
  return result;
}

void Builder::writeRanges(std::byte* header, const Summary& summary) const {
  for (std::size_t axis = 0; axis < 3; ++axis) {
    const double scale = description_.scale[axis];
    const double origin = description_.origin[axis];
    writeAt(header + HeaderAt::scale + 8 * axis, scale);
    writeAt(header + HeaderAt::origin + 8 * axis, origin);
    if (summary.low[axis] > summary.high[axis]) continue; // no points
    writeAt(header + HeaderAt::ranges + 16 * axis, summary.high[axis] * scale + origin);
    writeAt(header + HeaderAt::ranges + 16 * axis + 8, summary.low[axis] * scale + origin);
  }
}

std::vector<std::byte> Builder::head(std::uint64_t points, const Summary& summary) const {
  std::vector<std::byte> result(headerOf14);
  std::byte* const header = result.data();
  std::memcpy(header, "LASF", 4);
  if (description_.pointFormat >= 6) writeAt(header + HeaderAt::globalEncoding, usesWkt);
  header[HeaderAt::versionMajor] = std::byte{1};
  header[HeaderAt::versionMinor] = std::byte{4};
  constexpr std::string_view software = "Quindle";
  std::memcpy(header + 58, software.data(), software.size());
  writeAt(header + HeaderAt::headerSize, static_cast<std::uint16_t>(headerOf14));
  writeAt(header + HeaderAt::pointOffset, static_cast<std::uint32_t>(pointOffset()));
  const auto recordCount = static_cast<std::uint32_t>((description_.extraFields.empty() ? 0 : 1) +
                                                      (description_.classNames.empty() ? 0 : 1));
  writeAt(header + HeaderAt::vlrCount, recordCount);
  header[HeaderAt::pointFormat] = static_cast<std::byte>(description_.pointFormat);
  writeAt(header + HeaderAt::recordLength, static_cast<std::uint16_t>(length_));
  if (description_.pointFormat < 6 && points <= std::numeric_limits<std::uint32_t>::max()) {
    writeAt(header + HeaderAt::legacyCount, static_cast<std::uint32_t>(points));
    for (std::size_t i = 0; i < 5; ++i)
      writeAt(header + HeaderAt::legacyByReturn + 4 * i, static_cast<std::uint32_t>(summary.byReturn[i]));
  }
  writeAt(header + HeaderAt::count, points);
  writeAt(header + HeaderAt::byReturn, summary.byReturn);
  writeRanges(header, summary);
  const std::vector<std::byte> behind = records();
  result.insert(result.end(), behind.begin(), behind.end());
  return result;
}

std::string descriptionProblem(const NewCloud& cloud) {
  const unsigned format = cloud.pointFormat;
  if (format > 8 || format == 4 || format == 5)
    return "Points of format " + std::to_string(format) + " can't be made. Choose 0, 1, 2, 3, 6, 7 or 8.";
  if (std::ranges::any_of(cloud.scale, [](double scale) { return !(scale > 0) || std::isinf(scale); }))
    return "The scale of new points must be a positive number. Choose one such as 0.001.";
  for (const NewField& field : cloud.extraFields) {
    if (field.name.size() > longestFieldName)
      return "The field name \"" + field.name + "\" is longer than 32 bytes. Choose a shorter one.";
    if (field.components < 1 || field.components > 3)
      return "The field \"" + field.name + "\" must have one, two or three components.";
  }
  constexpr std::size_t mostFields = std::numeric_limits<std::uint16_t>::max() / extraEntrySize;
  if (cloud.extraFields.size() > mostFields)
    return "A LAS file can't describe more than " + std::to_string(mostFields) + " extra fields. Use fewer.";
  for (const ClassName& entry : cloud.classNames)
    if (entry.name.size() > longestClassName)
      return "The class name \"" + entry.name + "\" is longer than 15 bytes. Choose a shorter one.";
  if (cloud.classNames.size() > classEntries)
    return "There can't be more than 256 names of classes. Use fewer.";
  return {};
}

/// Fills and writes the points, block by block and blocks in parallel.
bool writePoints(const Builder& builder, std::uint64_t points, const FillPoint& fill, AtomicFile& file,
                 Summary& summary, std::string& error) {
  std::mutex gathering;
  std::atomic<bool> failed{false};
  const NewPoint blank = [&] {
    NewPoint point;
    point.extra.resize(builder.extraCount());
    return point;
  }();
  const std::uint64_t blocks = (points + blockPoints - 1) / blockPoints;
  tbb::parallel_for(std::uint64_t{0}, blocks, [&](std::uint64_t block) {
    if (failed) return;
    const std::uint64_t first = block * blockPoints;
    const std::uint64_t count = std::min<std::uint64_t>(blockPoints, points - first);
    std::vector<std::byte> buffer(static_cast<std::size_t>(count) * builder.recordLength());
    Summary part;
    NewPoint point;
    for (std::uint64_t i = 0; i < count; ++i) {
      point = blank;
      fill(first + i, point);
      builder.writePoint(point, buffer.data() + i * builder.recordLength(), part);
    }
    std::string problem;
    const bool good = file.write(builder.pointOffset() + first * builder.recordLength(), buffer, problem);
    const std::lock_guard lock(gathering);
    summary.add(part);
    if (!good && !failed.exchange(true)) error = problem;
  });
  return !failed;
}

} // namespace

bool buildLas(const NewCloud& description, std::uint64_t points, const FillPoint& fill,
              const std::string& path, const Stop& stop, std::string& error) {
  error = descriptionProblem(description);
  if (!error.empty()) return false;
  const Builder builder(description);
  const auto file = AtomicFile::create(path, error, &stop);
  if (!file || !file->reserve(builder.pointOffset() + points * builder.recordLength(), error)) return false;
  Summary summary;
  if (!writePoints(builder, points, fill, *file, summary, error)) return false;
  return file->write(0, builder.head(points, summary), error) && file->commit(error);
}

} // namespace Zamt::Host
