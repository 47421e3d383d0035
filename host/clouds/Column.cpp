#include "host/clouds/Column.h"

#include <cstring>
#include <limits>
#include <optional>

namespace Zamt::Host {

namespace {

constexpr double noValue = std::numeric_limits<double>::quiet_NaN();

template <class Number>
double numberAt(const std::byte* at) {
  Number number;
  std::memcpy(&number, at, sizeof number);
  return static_cast<double>(number);
}

} // namespace

/// One loop for each type, so that nothing is decided in it. Most fields are neither scaled nor have numbers
/// that mean nothing; a multiplication by one would cost nothing, but -0.0 + 0.0 would lose a sign.
template <class Number, class Place>
void Column::readNumbers(Place place, std::span<double> out) const {
  const std::byte* const start = stored_.start;
  const std::size_t stride = stored_.stride;
  const double scale = field_->scale[component_];
  const double origin = field_->origin[component_];
  if (const std::optional<double> noData = field_->noData[component_]) {
    for (std::size_t i = 0; i < out.size(); ++i) {
      const double stored = numberAt<Number>(start + place(i) * stride);
      out[i] = stored == *noData ? noValue : stored * scale + origin;
    }
  } else if (scale == 1 && origin == 0) {
    for (std::size_t i = 0; i < out.size(); ++i) out[i] = numberAt<Number>(start + place(i) * stride);
  } else {
    for (std::size_t i = 0; i < out.size(); ++i)
      out[i] = numberAt<Number>(start + place(i) * stride) * scale + origin;
  }
}

template <class Place>
void Column::readBits(Place place, std::span<double> out) const {
  const std::byte* const start = stored_.start;
  const std::size_t stride = stored_.stride;
  const unsigned shift = stored_.shift;
  const unsigned bits = mask();
  for (std::size_t i = 0; i < out.size(); ++i)
    out[i] = (std::to_integer<unsigned>(start[place(i) * stride]) >> shift) & bits;
}

template <class Place>
void Column::readPlaces(Place place, std::span<double> out) const {
  if (stored_.bits != 0) return readBits(place, out);
  switch (stored_.type) {
  case FieldType::U8: return readNumbers<std::uint8_t>(place, out);
  case FieldType::I8: return readNumbers<std::int8_t>(place, out);
  case FieldType::U16: return readNumbers<std::uint16_t>(place, out);
  case FieldType::I16: return readNumbers<std::int16_t>(place, out);
  case FieldType::U32: return readNumbers<std::uint32_t>(place, out);
  case FieldType::I32: return readNumbers<std::int32_t>(place, out);
  case FieldType::U64: return readNumbers<std::uint64_t>(place, out);
  case FieldType::I64: return readNumbers<std::int64_t>(place, out);
  case FieldType::F32: return readNumbers<float>(place, out);
  case FieldType::F64: return readNumbers<double>(place, out);
  }
}

void Column::gather(std::span<const std::uint32_t> indices, std::span<double> out) const {
  const std::uint32_t* const places = indices.data();
  readPlaces([places](std::size_t i) -> std::size_t { return places[i]; }, out);
}

void Column::read(std::size_t from, std::span<double> out) const {
  readPlaces([from](std::size_t i) { return from + i; }, out);
}

} // namespace Zamt::Host
