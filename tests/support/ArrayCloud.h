#pragma once

#include "files/writeWholeFile.h"
#include "host/clouds/openCloud.h"
#include "tests/support/readCloud.h"

#include <algorithm>
#include <numeric>
#include <utility>

namespace Zamt::Testing {

/// A format of the tests' own, which says what a cloud may be beside a LAS file: columns are arrays that a
/// reader copies to room of its own, blocks have 1, 0, 7 and 50,000 points in turn, and what is written is
/// one byte a point, its class.
class ArrayFormat : public Host::CloudFormat {
public:
  /// The points of another cloud. A block that is `broken` can't be read.
  explicit ArrayFormat(const Host::PointCloud& from, std::size_t broken = ~std::size_t{0})
      : broken_(broken), about_{from.versionMinor(),   from.pointFormat(),
                                from.fields(),         from.keyOf(from.classField()).field,
                                from.highestClass(),   from.classNames(),
                                blocksOf(from.size()), {}} {
    for (Host::Field& field : about_.fields) {
      for (unsigned component = 0; component < 3; ++component)
        columns_.push_back(component < field.components ? readField(from, field.name, component)
                                                        : std::vector<double>());
      field.scale = {1, 1, 1};
      field.origin = {};
      field.noData = {};
    }
    for (const double number : readField(from, from.classField().name))
      classes_.push_back(static_cast<std::uint8_t>(number));
  }

  const Host::CloudDescription& description() const override { return about_; }

  std::unique_ptr<Host::ColumnReader> makeReader() const override { return std::make_unique<Reader>(*this); }

  bool write(const Host::ClassOverlay& changed, const std::vector<Host::ClassName>& /*addedNames*/,
             const std::string& path, const Stop& /*stop*/, std::string& error) const override {
    std::vector<std::uint8_t> classes = classes_;
    for (std::size_t block = 0; block < about_.blocks.size(); ++block)
      std::ranges::copy(changed.of(block),
                        classes.begin() + static_cast<std::ptrdiff_t>(about_.blocks.first(block)));
    return writeWholeFile(path, std::as_bytes(std::span(classes)), error);
  }

private:
  class Reader : public Host::ColumnReader {
  public:
    explicit Reader(const ArrayFormat& format) : format_(format), room_(format.columns_.size()) {}

    bool read(std::size_t block, Host::ColumnKey key, Host::StoredColumn& column,
              std::string& problem) override {
      if (block == format_.broken_) problem = "A block of the arrays is broken. Make them again.";
      if (block == format_.broken_) return false;
      if (std::exchange(block_, block) != block) // whoever reads on there reads nonsense
        for (std::vector<double>& values : room_) std::ranges::fill(values, -12345);
      const auto first = static_cast<std::ptrdiff_t>(format_.about_.blocks.first(block));
      if (key.field == format_.about_.classField) {
        column = {std::as_bytes(std::span(format_.classes_).subspan(static_cast<std::size_t>(first))).data(),
                  1, Host::FieldType::U8};
        return true;
      }
      const std::vector<double>& all = format_.columns_[key.field * 3 + key.component];
      std::vector<double>& values = room_[key.field * 3 + key.component];
      values.assign(all.begin() + first,
                    all.begin() + first + static_cast<std::ptrdiff_t>(format_.about_.blocks.count(block)));
      column = {std::as_bytes(std::span(values)).data(), sizeof(double), Host::FieldType::F64};
      return true;
    }

  private:
    const ArrayFormat& format_;
    std::size_t block_ = ~std::size_t{0};
    std::vector<std::vector<double>> room_;
  };

  static Host::BlockTable blocksOf(std::uint64_t points) {
    constexpr std::array<std::uint64_t, 4> counts{1, 0, 7, 50000};
    std::vector<std::uint64_t> starts{0};
    while (starts.back() < points)
      starts.push_back(std::min(points, starts.back() + counts[(starts.size() - 1) % counts.size()]));
    return Host::BlockTable(std::move(starts));
  }

  std::size_t broken_;
  Host::CloudDescription about_;
  std::vector<std::vector<double>> columns_; ///< Three for each field.
  std::vector<std::uint8_t> classes_;
};

/// The same points as arrays.
inline std::shared_ptr<Host::PointCloud> asArrays(const Host::PointCloud& cloud,
                                                  std::size_t broken = ~std::size_t{0}) {
  return std::make_shared<Host::PointCloud>(cloud.path() + " as arrays",
                                            std::make_unique<ArrayFormat>(cloud, broken));
}

/// How the files of the format begin; the path of another cloud follows, whose points they hold.
inline constexpr std::string_view arraysOf = "arrays of ";

inline std::string_view textOf(std::span<const std::byte> bytes) {
  return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

inline std::unique_ptr<const Host::CloudFormat> openArrays(std::unique_ptr<MappedFile> file,
                                                           const std::string& /*path*/, std::string& error) {
  const auto other = Host::openCloud(std::string(textOf(file->bytes()).substr(arraysOf.size())), error);
  return other ? std::make_unique<ArrayFormat>(*other) : nullptr;
}

/// This format and those of the host.
inline Host::CloudFormats formatsWithArrays() {
  static const std::vector<Host::CloudOpener> formats = [] {
    std::vector<Host::CloudOpener> all{
        {[](std::span<const std::byte> bytes) { return textOf(bytes).starts_with(arraysOf); }, openArrays}};
    all.insert(all.end(), Host::cloudFormats().begin(), Host::cloudFormats().end());
    return all;
  }();
  return formats;
}

} // namespace Zamt::Testing
