#pragma once

#include "host/clouds/PointCloud.h"

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace Zamt::Host {

/// The values of one field over all points and components.
struct FieldRange {
  std::string name;
  FieldType type = FieldType::U8;
  unsigned components = 1;
  bool hasValues =
      false;       ///< Whether any point has a value that is a number; else the two below mean nothing.
  double low = 0;  ///< Scale and origin applied,
  double high = 0; ///< likewise.
};

struct ClassCount {
  std::uint8_t number = 0;
  std::uint64_t points = 0;
};

/// What a cloud holds.
struct CloudInfo {
  unsigned versionMinor = 0;
  unsigned pointFormat = 0;
  std::uint64_t points = 0;
  std::optional<Compression> compression; ///< How the file stores the points, unless just as they are.
  Bounds bounds;                   ///< Of the points themselves, not what the header says; world units.
  std::vector<FieldRange> fields;  ///< In the order of the file.
  std::vector<ClassCount> classes; ///< Those that occur, in number order.
};

/// Works out what the cloud holds, in one pass over its points. False when it was stopped or a block can't be
/// read, with a sentence in `problem`.
bool inspectCloud(const PointCloud& cloud, const Stop& stop, CloudInfo& info, std::string& problem);

/// How many points there are of each class.
using ClassCounts = std::array<std::uint64_t, 256>;

/// Counts the classes as changed. False as `inspectCloud`.
bool countClasses(const PointCloud& cloud, const Stop& stop, ClassCounts& counts, std::string& problem);

} // namespace Zamt::Host
