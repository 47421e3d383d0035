#pragma once

#include "host/clouds/Histogram.h"
#include "host/clouds/PointCloud.h"
#include "host/clouds/cloudInfo.h"

#include <cstdint>
#include <string>
#include <vector>

namespace Zamt::Host {

/// What the values of one component of a field come to over all points. NaN, where there is no value, and
/// infinities are left out.
struct FieldStats {
  std::string name;
  unsigned component = 0;
  std::uint64_t values = 0; ///< How many there are; without any the rest means nothing.
  double low = 0;           ///< Scale and origin applied, as all below.
  double high = 0;
  double mean = 0;
  double deviation = 0; ///< The square root of the mean squared distance from the mean.
  Histogram histogram;
};

/// Some of the points of a cloud.
struct PointStats {
  std::uint64_t points = 0;
  std::uint64_t lastReturns = 0; ///< Whose number of the return is the number of returns.
  Bounds bounds;                 ///< World units.
  std::uint64_t cells = 0; ///< Squares in plan with sides of one unit, at whole numbers, that hold a point.
};

struct ClassStats {
  std::uint8_t number = 0;
  PointStats points;
};

struct CloudStats {
  std::vector<FieldStats> fields;  ///< In the order of the file.
  std::vector<ClassStats> classes; ///< Those that occur, in number order.
  PointStats all;
};

/// Works that out in one pass. Memory is in proportion to the plan's cells that hold points. False when it
/// was stopped or a block can't be read, with a sentence in `problem`.
bool measureCloud(const PointCloud& cloud, const Stop& stop, CloudStats& stats, std::string& problem);

/// What `inspectCloud` would find, taken from these.
CloudInfo infoOf(const PointCloud& cloud, const CloudStats& stats);

} // namespace Zamt::Host
