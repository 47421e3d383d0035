#pragma once

#include "host/regions/Region.h"

#include "sorbine/VValue.h"

#include <array>
#include <string>
#include <vector>

namespace Zamt::Host {

/// A position in world units, once one was given.
struct WorldPoint {
  std::array<double, 3> at{};
  bool given = false;
};

/// A line drawn on the screen, in world x and y.
struct PointDataChunk {
  std::vector<std::array<double, 2>> points;
};

} // namespace Zamt::Host

namespace Zamt {

/// A region as text: whatever `parseRegion` reads; printed as the six numbers of a box, or as WKT.
template <>
struct VValueTrait<Host::Region> {
  static bool setValueFromText(Host::Region& region, const std::string& text);
  static std::string Text(const Host::Region& region); // NOLINT(readability-identifier-naming): prescribed
};

/// A position as text: three numbers, as `parseVector` reads them; empty while none was given.
template <>
struct VValueTrait<Host::WorldPoint> {
  static bool setValueFromText(Host::WorldPoint& point, const std::string& text);
  static std::string Text(const Host::WorldPoint& point); // NOLINT(readability-identifier-naming): prescribed
};

} // namespace Zamt
