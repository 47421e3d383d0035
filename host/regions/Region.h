#pragma once

#include "host/clouds/Bounds.h"

#include <array>
#include <string>
#include <string_view>
#include <vector>

namespace Zamt::Host {

/// A closed line in x and y, in world units; the last point joins the first whether or not it repeats it.
using Ring = std::vector<std::array<double, 2>>;

/// An area in x and y: what an odd number of its rings encloses, so that a ring inside another is a hole.
struct Polygon {
  std::vector<Ring> rings;
};

/// Where to work: a box, or polygons over all heights.
struct Region {
  Bounds box;                    ///< Used when there are no polygons. A missing height is infinite.
  std::vector<Polygon> polygons; ///< A point is inside when it is inside any of them.
};

/// Reads a region: six numbers (two corners of a box, in any order), four (a box in x and y), a WKT POLYGON
/// or MULTIPOLYGON, or a GeoJSON Polygon, MultiPolygon, Feature or FeatureCollection. Numbers may be
/// separated by blanks or commas and stand in parentheses, nested in any way. False, with a sentence in
/// `problem`, when `text` is none of these; `region` is then not to be used.
bool parseRegion(std::string_view text, Region& region, std::string& problem);

/// Reads three numbers, written like those of a region. False, with a sentence in `problem`, when `text` is
/// anything else.
bool parseVector(std::string_view text, std::array<double, 3>& vector, std::string& problem);

} // namespace Zamt::Host
