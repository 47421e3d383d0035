#include "host/filters/PolygonFilter.h"

#include "host/filters/BoxFilter.h"
#include "host/filters/FieldLookup.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <limits>
#include <vector>

namespace Zamt::Host {
namespace {

struct Edge {
  double x1 = 0, y1 = 0, x2 = 0, y2 = 0;
  std::size_t polygon = 0;
};

// Edges are listed by the horizontal strips that they touch, so that a point looks only at the edges at its
// own height. At most this many strips; beyond it the strips of common outlines hold an edge or two already.
constexpr std::size_t maximumStrips = 4096;

// Long edges lie in many strips. With more entries than this for each edge, fewer strips are made.
constexpr std::size_t entriesPerEdge = 8;

std::vector<Edge> collectEdges(std::span<const Polygon> polygons) {
  std::vector<Edge> edges;
  for (std::size_t p = 0; p < polygons.size(); ++p)
    for (const Ring& ring : polygons[p].rings)
      for (std::size_t i = 0; i < ring.size(); ++i) {
        const auto& from = ring[i];
        const auto& to = ring[i + 1 == ring.size() ? 0 : i + 1];
        edges.push_back({from[0], from[1], to[0], to[1], p});
      }
  return edges;
}

Bounds boundsOf(const std::vector<Edge>& edges) {
  constexpr double infinity = std::numeric_limits<double>::infinity();
  Bounds box{{infinity, infinity, -infinity}, {-infinity, -infinity, infinity}};
  for (const Edge& edge : edges) {
    box.low[0] = std::min(box.low[0], edge.x1);
    box.high[0] = std::max(box.high[0], edge.x1);
    box.low[1] = std::min(box.low[1], edge.y1);
    box.high[1] = std::max(box.high[1], edge.y1);
  }
  return box;
}

// The lines of all polygons, ready for asking about points.
class Outline {
public:
  explicit Outline(std::span<const Polygon> polygons) : edges(collectEdges(polygons)), box(boundsOf(edges)) {
    strips = std::clamp<std::size_t>(edges.size(), 1, maximumStrips);
    while (strips > 1 && countEntries() > edges.size() * entriesPerEdge) strips /= 2;
    fillStrips();
  }

  const Bounds& bounds() const { return box; }

  bool contains(double x, double y) const {
    if (!(x >= box.low[0] && x <= box.high[0] && y >= box.low[1] && y <= box.high[1])) return false;
    const std::size_t strip = stripOf(y);
    bool odd = false;
    std::size_t polygon = 0;
    for (std::size_t i = starts[strip]; i < starts[strip + 1]; ++i) {
      const Edge& edge = edges[entries[i]];
      if (edge.polygon != polygon) {
        if (odd) return true;
        polygon = edge.polygon;
      }
      const double side = (edge.x2 - edge.x1) * (y - edge.y1) - (edge.y2 - edge.y1) * (x - edge.x1);
      if (side == 0 && isBeside(edge, x, y)) return true;
      // An edge counts its lower end and not its upper one, so that a corner is met once.
      if ((edge.y1 > y) != (edge.y2 > y) && (side > 0) == (edge.y2 > edge.y1)) odd = !odd;
    }
    return odd;
  }

private:
  static bool isBeside(const Edge& edge, double x, double y) {
    return x >= std::min(edge.x1, edge.x2) && x <= std::max(edge.x1, edge.x2) &&
           y >= std::min(edge.y1, edge.y2) && y <= std::max(edge.y1, edge.y2);
  }

  // The same monotone function for points and for edges, so that rounding can't separate them.
  std::size_t stripOf(double y) const {
    const double height = box.high[1] - box.low[1];
    const double share = height > 0 ? (y - box.low[1]) / height * static_cast<double>(strips) : 0;
    return share > 0 ? std::min(static_cast<std::size_t>(std::min(share, 1e9)), strips - 1) : 0;
  }

  std::size_t lowestStrip(const Edge& edge) const { return stripOf(std::min(edge.y1, edge.y2)); }
  std::size_t highestStrip(const Edge& edge) const { return stripOf(std::max(edge.y1, edge.y2)); }

  std::size_t countEntries() const {
    std::size_t total = 0;
    for (const Edge& edge : edges) total += highestStrip(edge) - lowestStrip(edge) + 1;
    return total;
  }

  void fillStrips() {
    starts.assign(strips + 2, 0);
    for (const Edge& edge : edges)
      for (std::size_t s = lowestStrip(edge); s <= highestStrip(edge); ++s) ++starts[s + 2];
    for (std::size_t s = 2; s < starts.size(); ++s) starts[s] += starts[s - 1];
    entries.resize(starts.back());
    for (std::size_t e = 0; e < edges.size(); ++e)
      for (std::size_t s = lowestStrip(edges[e]); s <= highestStrip(edges[e]); ++s)
        entries[starts[s + 1]++] = e;
  }

  std::vector<Edge> edges; // In the order of their polygons, and so in every strip.
  Bounds box;
  std::size_t strips = 1;
  std::vector<std::size_t> starts; // Strip s holds entries[starts[s]] up to entries[starts[s + 1]].
  std::vector<std::size_t> entries;
};

class PolygonFilter : public PointFilter {
public:
  PolygonFilter(const PointCloud& pointCloud, const Field& xField, const Field& yField,
                std::span<const Polygon> polygons)
      : cloud(pointCloud), fieldX(xField), fieldY(yField), outline(polygons) {}

  void test(std::uint64_t first, std::span<const std::uint32_t> indices,
            std::span<std::uint8_t> holds) const override {
    forEachPiece(indices, holds,
                 [&](std::span<const std::uint32_t> piece, std::span<std::uint8_t> pieceHolds) {
                   std::array<double, gatherPoints> x;
                   std::array<double, gatherPoints> y;
                   cloud.gather(fieldX, 0, first, piece, std::span(x).first(piece.size()));
                   cloud.gather(fieldY, 0, first, piece, std::span(y).first(piece.size()));
                   for (std::size_t i = 0; i < piece.size(); ++i)
                     pieceHolds[i] = outline.contains(x[i], y[i]) ? 1 : 0;
                 });
  }

  Coverage coverage(std::uint64_t first) const override {
    const Bounds block = cloud.blockBounds(first);
    const Bounds& box = outline.bounds();
    for (std::size_t axis = 0; axis < 2; ++axis)
      if (block.high[axis] < box.low[axis] || block.low[axis] > box.high[axis]) return Coverage::None;
    return Coverage::Some;
  }

private:
  const PointCloud& cloud;
  const Field& fieldX;
  const Field& fieldY;
  Outline outline;
};

} // namespace

std::shared_ptr<const PointFilter>
makePolygonFilter(const PointCloud& cloud, std::span<const Polygon> polygons, std::string& problem) {
  const bool anyLine = std::any_of(polygons.begin(), polygons.end(),
                                   [](const Polygon& polygon) { return !polygon.rings.empty(); });
  if (!anyLine) {
    problem = "The region holds no polygon. Give at least one with three corners or more.";
    return nullptr;
  }
  const Field* fieldX = lookUpField(cloud, "X", problem);
  const Field* fieldY = lookUpField(cloud, "Y", problem);
  if (fieldX == nullptr || fieldY == nullptr) return nullptr;
  return std::make_shared<PolygonFilter>(cloud, *fieldX, *fieldY, polygons);
}

std::shared_ptr<const PointFilter> makeRegionFilter(const PointCloud& cloud, const Region& region,
                                                    std::string& problem) {
  if (region.polygons.empty()) return makeBoxFilter(cloud, region.box, problem);
  return makePolygonFilter(cloud, region.polygons, problem);
}

} // namespace Zamt::Host
