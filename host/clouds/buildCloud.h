#pragma once

#include "files/Stop.h"
#include "host/clouds/ClassName.h"
#include "host/clouds/Field.h"

#include <array>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace Zamt::Host {

/// A field that is stored as extra bytes, unscaled.
struct NewField {
  std::string name; ///< At most 32 bytes.
  FieldType type = FieldType::F32;
  unsigned components = 1; ///< 1, 2 or 3 values a point.
};

/// What a new LAS or LAZ 1.4 file is like.
struct NewCloud {
  unsigned pointFormat = 6; ///< 0, 1, 2, 3, 6, 7 or 8.
  std::array<double, 3> scale{0.001, 0.001, 0.001};
  std::array<double, 3> origin{0, 0, 0};
  std::vector<NewField> extraFields;
  std::vector<ClassName> classNames; ///< Names of at most 15 bytes; none, no lookup record.
};

/// One point of a new file, in world units. What the format can't hold is left out.
struct NewPoint {
  std::array<double, 3> position{0, 0, 0};
  std::uint16_t intensity = 0;
  std::uint8_t returnNumber = 1;
  std::uint8_t numberOfReturns = 1;
  std::uint8_t classification = 0;
  std::uint8_t userData = 0;
  double scanAngle = 0; ///< Degrees.
  std::uint16_t pointSourceId = 0;
  double gpsTime = 0;
  std::array<std::uint16_t, 3> colour{0, 0, 0};
  std::uint16_t infrared = 0;
  std::vector<double> extra; ///< One for each component of each extra field, in order; zeros to begin with.
};

/// Fills in the point of that number, which comes with the defaults.
using FillPoint = std::function<void(std::uint64_t, NewPoint&)>;

/// Writes a file of that many points to `path`: LAZ if the name ends so, otherwise LAS. `fill` is called from
/// several threads and in no order. Positions are rounded to the scale; one that is further away than 32 bits
/// reach, and a number its type can't hold, is clamped. False with a sentence in `error` when the file can't
/// be made; then `path` is as before.
bool buildCloud(const NewCloud& description, std::uint64_t points, const FillPoint& fill,
                const std::string& path, const Stop& stop, std::string& error);

} // namespace Zamt::Host
