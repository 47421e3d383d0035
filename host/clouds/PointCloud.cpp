#include "host/clouds/PointCloud.h"

#include "host/clouds/CloudAccess.h"

#include <algorithm>
#include <functional>
#include <limits>
#include <numeric>
#include <oneapi/tbb/blocked_range.h>
#include <oneapi/tbb/parallel_reduce.h>

namespace Zamt::Host {

namespace {

constexpr double noValue = std::numeric_limits<double>::quiet_NaN();

/// A component of the points from `first` on: where the first value lies and how far apart they are.
struct Column {
  const std::byte* start = nullptr;
  std::size_t stride = 0;
  std::span<const std::uint32_t> indices;
  std::span<double> out;
};

/// One loop for each type, so that nothing is decided in it. Most fields are neither scaled nor have numbers
/// that mean nothing; a multiplication by one would cost nothing, but -0.0 + 0.0 would lose a sign.
template <class T>
void gatherNumbers(const Column& column, const Field& field, unsigned component) {
  const double scale = field.scale[component];
  const double origin = field.origin[component];
  const std::size_t count = column.indices.size();
  if (const std::optional<double> noData = field.noData[component]) {
    for (std::size_t i = 0; i < count; ++i) {
      const auto stored = static_cast<double>(readAt<T>(column.start + column.indices[i] * column.stride));
      column.out[i] = stored == *noData ? noValue : stored * scale + origin;
    }
  } else if (scale == 1 && origin == 0) {
    for (std::size_t i = 0; i < count; ++i)
      column.out[i] = static_cast<double>(readAt<T>(column.start + column.indices[i] * column.stride));
  } else {
    for (std::size_t i = 0; i < count; ++i)
      column.out[i] =
          static_cast<double>(readAt<T>(column.start + column.indices[i] * column.stride)) * scale + origin;
  }
}

void gatherBits(const Column& column, unsigned shift, unsigned bits) {
  const unsigned mask = (1U << bits) - 1;
  for (std::size_t i = 0; i < column.indices.size(); ++i)
    column.out[i] =
        (std::to_integer<unsigned>(column.start[column.indices[i] * column.stride]) >> shift) & mask;
}

void gatherTyped(const Column& column, const Field& field, unsigned component) {
  switch (field.type) {
  case FieldType::U8: return gatherNumbers<std::uint8_t>(column, field, component);
  case FieldType::I8: return gatherNumbers<std::int8_t>(column, field, component);
  case FieldType::U16: return gatherNumbers<std::uint16_t>(column, field, component);
  case FieldType::I16: return gatherNumbers<std::int16_t>(column, field, component);
  case FieldType::U32: return gatherNumbers<std::uint32_t>(column, field, component);
  case FieldType::I32: return gatherNumbers<std::int32_t>(column, field, component);
  case FieldType::U64: return gatherNumbers<std::uint64_t>(column, field, component);
  case FieldType::I64: return gatherNumbers<std::int64_t>(column, field, component);
  case FieldType::F32: return gatherNumbers<float>(column, field, component);
  case FieldType::F64: return gatherNumbers<double>(column, field, component);
  }
}

using ClassCounts = std::array<std::uint64_t, 256>;

} // namespace

PointCloud::PointCloud(std::unique_ptr<State> parts) : state(std::move(parts)) {}
PointCloud::~PointCloud() = default;

std::shared_ptr<PointCloud> PointCloud::open(const std::string& path, std::string& error) {
  auto parts = std::make_unique<State>();
  parts->path = path;
  parts->file = MappedFile::open(path, error);
  if (!parts->file || !readLayout(parts->file->bytes(), path, parts->layout, error)) return nullptr;
  // Bounded by the file's size: the layout has checked that all points lie in it.
  const auto blocks = static_cast<std::size_t>((parts->layout.points + blockPoints - 1) / blockPoints);
  parts->changedClasses.resize(blocks);
  parts->boxes = std::vector<State::BlockBox>(blocks);
  return std::shared_ptr<PointCloud>(new PointCloud(std::move(parts)));
}

const std::string& PointCloud::path() const { return state->path; }
std::uint64_t PointCloud::size() const { return state->layout.points; }
unsigned PointCloud::pointFormat() const { return state->layout.pointFormat; }
unsigned PointCloud::versionMinor() const { return state->layout.versionMinor; }
const std::vector<Field>& PointCloud::fields() const { return state->layout.fields; }
const std::vector<ClassName>& PointCloud::classNames() const { return state->layout.classNames; }
unsigned PointCloud::highestClass() const { return state->layout.classMask; }

const Field* PointCloud::findField(std::string_view name) const {
  const auto found = std::ranges::find(state->layout.fields, name, &Field::name);
  return found == state->layout.fields.end() ? nullptr : &*found;
}

void PointCloud::gather(const Field& field, unsigned component, std::uint64_t first,
                        std::span<const std::uint32_t> indices, std::span<double> out) const {
  if (indices.empty()) return;
  const LasLayout& layout = state->layout;
  // The place alone tells the class: no other field starts at its lowest bit.
  if (field.offset == layout.classAt && field.shift == 0) {
    for (std::size_t i = 0; i < indices.size(); ++i) out[i] = classOf(first + indices[i]);
    return;
  }
  const std::size_t offset = field.offset + component * sizeOf(field.type);
  const Column column{state->record(first) + offset, layout.recordLength, indices, out};
  if (field.bits != 0)
    gatherBits(column, field.shift, field.bits);
  else
    gatherTyped(column, field, component);
}

std::array<std::int32_t, 3> PointCloud::storedPosition(std::uint64_t point) const {
  const std::byte* const record = state->record(point);
  return {readAt<std::int32_t>(record), readAt<std::int32_t>(record + 4), readAt<std::int32_t>(record + 8)};
}

std::array<double, 3> PointCloud::position(std::uint64_t point) const {
  const std::array<std::int32_t, 3> stored = storedPosition(point);
  std::array<double, 3> result{};
  for (std::size_t axis = 0; axis < 3; ++axis) {
    const Field& field = state->layout.fields[axis];
    result[axis] = stored[axis] * field.scale[0] + field.origin[0];
  }
  return result;
}

Bounds PointCloud::blockBounds(std::uint64_t first) const {
  const std::uint64_t end = std::min(first + blockPoints, size());
  if (first >= end) return {};
  State::BlockBox& cached = state->boxes[static_cast<std::size_t>(first / blockPoints)];
  std::call_once(cached.once, [&] {
    std::array<std::int32_t, 3> low = storedPosition(first);
    std::array<std::int32_t, 3> high = low;
    for (std::uint64_t point = first + 1; point < end; ++point) {
      const std::array<std::int32_t, 3> stored = storedPosition(point);
      for (std::size_t axis = 0; axis < 3; ++axis) {
        low[axis] = std::min(low[axis], stored[axis]);
        high[axis] = std::max(high[axis], stored[axis]);
      }
    }
    for (std::size_t axis = 0; axis < 3; ++axis) {
      const Field& field = state->layout.fields[axis];
      const double one = low[axis] * field.scale[0] + field.origin[0];
      const double other = high[axis] * field.scale[0] + field.origin[0];
      cached.box.low[axis] = std::min(one, other); // a negative scale turns them round
      cached.box.high[axis] = std::max(one, other);
    }
  });
  return cached.box;
}

std::uint8_t PointCloud::classOf(std::uint64_t point) const {
  const auto& changed = state->changedClasses[static_cast<std::size_t>(point / blockPoints)];
  return changed ? changed[point % blockPoints] : state->storedClass(point);
}

void PointCloud::setClass(std::uint64_t point, std::uint8_t number) {
  if (classOf(point) == number) return;
  auto& changed = state->changedClasses[static_cast<std::size_t>(point / blockPoints)];
  if (!changed) {
    changed = std::make_unique<std::uint8_t[]>(blockPoints);
    const std::uint64_t first = point - point % blockPoints;
    const std::uint64_t count = std::min<std::uint64_t>(blockPoints, size() - first);
    for (std::uint64_t i = 0; i < count; ++i) changed[i] = state->storedClass(first + i);
  }
  changed[point % blockPoints] = number;
}

std::array<std::uint64_t, 256> PointCloud::countClasses() const {
  return tbb::parallel_reduce(
      tbb::blocked_range<std::uint64_t>(0, size(), blockPoints), ClassCounts{},
      [this](const tbb::blocked_range<std::uint64_t>& range, ClassCounts counts) {
        for (std::uint64_t point = range.begin(); point != range.end(); ++point) ++counts[classOf(point)];
        return counts;
      },
      [](ClassCounts one, const ClassCounts& other) {
        std::ranges::transform(one, other, one.begin(), std::plus<>());
        return one;
      });
}

} // namespace Zamt::Host
