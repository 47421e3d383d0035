#include "host/clouds/las/LasBuilder.h"

#include "host/clouds/las/LasLayout.h"
#include "host/clouds/las/PointSummary.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <mutex>
#include <optional>
#include <type_traits>
#include <utility>

namespace Zamt::Host {

namespace {

constexpr std::size_t longestFieldName = 32;
constexpr std::uint16_t usesWkt = 16; ///< Bit of the global encoding that the formats from 6 on ask for.

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

  void writePoint(const NewPoint& point, std::byte* at) const;
  std::vector<std::byte> head() const;

private:
  std::vector<std::byte> records() const;

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

void Builder::writePoint(const NewPoint& point, std::byte* at) const {
  for (std::size_t axis = 0; axis < 3; ++axis) {
    const auto stored =
        nearest<std::int32_t>((point.position[axis] - description_.origin[axis]) / description_.scale[axis]);
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

std::vector<std::byte> Builder::head() const {
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
  for (std::size_t axis = 0; axis < 3; ++axis) {
    writeAt(header + HeaderAt::scale + 8 * axis, description_.scale[axis]);
    writeAt(header + HeaderAt::origin + 8 * axis, description_.origin[axis]);
  }
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

class MadePoints : public LasSource {
public:
  /// The file is made of `builder`, whose description outlives this; `fill` does so as well.
  MadePoints(Builder builder, std::uint64_t points, const FillPoint& fill)
      : builder_(std::move(builder)), fill_(fill), blocks_(BlockTable::even(points)) {}

  bool describeFile(const std::string& path, std::string& error) {
    file_.path = path;
    file_.made = builder_.head();
    if (!readFrame(file_.bytes(), path, file_.layout, error)) return false;
    summary_.emplace(file_.layout);
    return true;
  }

  const LasFile& file() const override { return file_; }
  const BlockTable& blocks() const override { return blocks_; }
  LasStretch pointData() const override { return {file_.layout.pointOffset, 0}; }
  void removeOwnRecords(LasEdits& /*edits*/) const override {}
  void describePoints(LasEdits& edits) const override { summary_->describe(file_.bytes(), edits); }
  std::unique_ptr<RecordReader> makeRecordReader() const override { return std::make_unique<Reader>(*this); }

private:
  /// Makes points as they are read.
  class Reader : public RecordReader {
  public:
    explicit Reader(const MadePoints& points) : points_(points) {
      blank_.extra.resize(points.builder_.extraCount());
    }

    bool read(std::size_t block, std::size_t from, std::span<std::byte> records,
              std::string& /*problem*/) override {
      std::uint64_t number = points_.blocks_.first(block) + from;
      for (std::size_t at = 0; at < records.size(); at += points_.builder_.recordLength()) {
        point_ = blank_;
        points_.fill_(number++, point_);
        points_.builder_.writePoint(point_, &records[at]);
      }
      PointSummary part(points_.file_.layout);
      part.add(records);
      const std::lock_guard lock(points_.gathering_);
      points_.summary_->add(part);
      return true;
    }

  private:
    const MadePoints& points_;
    NewPoint blank_;
    NewPoint point_;
  };

  Builder builder_;
  const FillPoint& fill_;
  BlockTable blocks_;
  LasFile file_;
  mutable std::mutex gathering_;
  mutable std::optional<PointSummary> summary_; ///< Once the layout is known.
};

} // namespace

std::unique_ptr<const LasSource> makePoints(const NewCloud& description, std::uint64_t points,
                                            const FillPoint& fill, const std::string& path,
                                            std::string& error) {
  error = descriptionProblem(description);
  if (!error.empty()) return nullptr;
  auto made = std::make_unique<MadePoints>(Builder(description), points, fill);
  return made->describeFile(path, error) ? std::move(made) : nullptr;
}

} // namespace Zamt::Host
