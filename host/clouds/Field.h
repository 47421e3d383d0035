#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

namespace Zamt::Host {

enum class FieldType : std::uint8_t { U8, I8, U16, I16, U32, I32, U64, I64, F32, F64 };

/// Bytes of one value of that type.
std::size_t sizeOf(FieldType type);

/// How a type is called: "uint8", "int8", ..., "float", "double".
const char* nameOfType(FieldType type);

/// One named field of the points.
struct Field {
  std::string name;        ///< As the point-cloud world calls it, or as the file names it.
  std::string description; ///< What the file says of it; may be empty.
  FieldType type = FieldType::U8;
  unsigned components = 1;                     ///< 1, 2 or 3 values a point.
  std::array<double, 3> scale{1, 1, 1};        ///< value = stored * scale + origin, for each component.
  std::array<double, 3> origin{0, 0, 0};       ///< Likewise.
  std::array<std::optional<double>, 3> noData; ///< The stored number that means "no value here".
};

} // namespace Zamt::Host
