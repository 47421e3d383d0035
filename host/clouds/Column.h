#pragma once

#include "host/clouds/Field.h"

#include <cstddef>
#include <cstdint>
#include <span>

namespace Zamt::Host {

/// Where one component of the points of a block lies in memory, be it a mapped file or what was decoded from
/// one.
struct StoredColumn {
  const std::byte* start = nullptr; ///< The number of the block's first point,
  std::size_t stride = 0;         ///< and how many bytes behind it that of the next one lies; aligned or not.
  FieldType type = FieldType::U8; ///< Of the numbers as they lie there.
  unsigned shift = 0;             ///< For numbers packed into the bits of a byte: the lowest bit,
  unsigned bits = 0;              ///< and how many; 0 for numbers that have their bytes to themselves.
};

/// One component of the points of a block, to be read as values. It refers to its field and to the memory
/// that the numbers lie in.
class Column {
public:
  Column(const StoredColumn& stored, const Field& field, unsigned component)
      : stored_(stored), field_(&field), component_(component) {}

  /// Writes the values of the points `indices[i]` of the block to `out[i]`, scale and origin applied; NaN
  /// where the file says that there is no value. `out` is as long as `indices`.
  void gather(std::span<const std::uint32_t> indices, std::span<double> out) const;

  /// The same for the `out.size()` points of the block from `from` on.
  void read(std::size_t from, std::span<double> out) const;

  /// The stored number of one point, for columns of bytes such as the class.
  std::uint8_t byteAt(std::size_t index) const {
    const auto whole = std::to_integer<unsigned>(stored_.start[index * stored_.stride]);
    return static_cast<std::uint8_t>((whole >> stored_.shift) & mask());
  }

private:
  unsigned mask() const { return stored_.bits == 0 ? 0xFFU : (1U << stored_.bits) - 1; }

  template <class Place>
  void readPlaces(Place place, std::span<double> out) const;
  template <class Place>
  void readBits(Place place, std::span<double> out) const;
  template <class Number, class Place>
  void readNumbers(Place place, std::span<double> out) const;

  StoredColumn stored_;
  const Field* field_;
  unsigned component_;
};

} // namespace Zamt::Host
