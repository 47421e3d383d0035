#include "host/filters/PolygonFilter.h"

#include "host/filters/BoxFilter.h"
#include "host/filters/FieldLookup.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <limits>
#include <utility>
#include <vector>

namespace Zamt::Host {
namespace {

struct Edge {
  double x1 = 0, y1 = 0, x2 = 0, y2 = 0;
  std::size_t polygon = 0;
};

/// Edges are listed by the horizontal strips that they touch, so that a point looks only at the edges at its
/// own height. At most this many strips; beyond it the strips of common outlines hold an edge or two already.
constexpr std::size_t maximumStrips = 4096;

/// Long edges lie in many strips. With more entries than this for each edge, fewer strips are made.
constexpr std::size_t entriesPerEdge = 8;

/// An outline with a strip of more edges than this is refused: every point in it would be held against them
/// all.
constexpr std::size_t mostEdgesOfStrip = 10'000;

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

/// The lines of all polygons, ready for asking about points.
class Outline {
public:
  explicit Outline(std::span<const Polygon> polygons)
      : edges_(collectEdges(polygons)), box_(boundsOf(edges_)) {
    strips_ = std::clamp<std::size_t>(edges_.size(), 1, maximumStrips);
    while (strips_ > 1 && countEntries() > edges_.size() * entriesPerEdge) strips_ /= 2;
    fillStrips();
  }

  const Bounds& bounds() const { return box_; }

  /// How many edges the fullest strip holds.
  std::size_t crowding() const {
    std::size_t most = 0;
    for (std::size_t s = 0; s < strips_; ++s) most = std::max(most, starts_[s + 1] - starts_[s]);
    return most;
  }

  bool contains(double x, double y) const {
    if (!(x >= box_.low[0] && x <= box_.high[0] && y >= box_.low[1] && y <= box_.high[1])) return false;
    const std::size_t strip = stripOf(y);
    bool odd = false;
    std::size_t polygon = 0;
    for (std::size_t i = starts_[strip]; i < starts_[strip + 1]; ++i) {
      const Edge& edge = edges_[entries_[i]];
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

  /// The same monotone function for points and for edges_, so that rounding can't separate them.
  std::size_t stripOf(double y) const {
    const double height = box_.high[1] - box_.low[1];
    const double share = height > 0 ? (y - box_.low[1]) / height * static_cast<double>(strips_) : 0;
    return share > 0 ? std::min(static_cast<std::size_t>(std::min(share, 1e9)), strips_ - 1) : 0;
  }

  std::size_t lowestStrip(const Edge& edge) const { return stripOf(std::min(edge.y1, edge.y2)); }
  std::size_t highestStrip(const Edge& edge) const { return stripOf(std::max(edge.y1, edge.y2)); }

  std::size_t countEntries() const {
    std::size_t total = 0;
    for (const Edge& edge : edges_) total += highestStrip(edge) - lowestStrip(edge) + 1;
    return total;
  }

  void fillStrips() {
    starts_.assign(strips_ + 2, 0);
    for (const Edge& edge : edges_)
      for (std::size_t s = lowestStrip(edge); s <= highestStrip(edge); ++s) ++starts_[s + 2];
    for (std::size_t s = 2; s < starts_.size(); ++s) starts_[s] += starts_[s - 1];
    entries_.resize(starts_.back());
    for (std::size_t e = 0; e < edges_.size(); ++e)
      for (std::size_t s = lowestStrip(edges_[e]); s <= highestStrip(edges_[e]); ++s)
        entries_[starts_[s + 1]++] = e;
  }

  std::vector<Edge> edges_; // In the order of their polygons, and so in every strip.
  Bounds box_;
  std::size_t strips_ = 1;
  std::vector<std::size_t> starts_; // Strip s holds entries_[starts_[s]] up to entries_[starts_[s + 1]].
  std::vector<std::size_t> entries_;
};

class PolygonFilter : public PointFilter {
public:
  explicit PolygonFilter(Outline outline) : outline_(std::move(outline)) {}

  void test(BlockReader& block, std::span<const std::uint32_t> indices,
            std::span<std::uint8_t> holds) const override {
    forEachPiece(indices, holds,
                 [&](std::span<const std::uint32_t> piece, std::span<std::uint8_t> pieceHolds) {
                   PieceValues x;
                   PieceValues y;
                   gatherPiece(block.axis(0), piece, x);
                   gatherPiece(block.axis(1), piece, y);
                   for (std::size_t i = 0; i < piece.size(); ++i)
                     pieceHolds[i] = outline_.contains(x[i], y[i]) ? 1 : 0;
                 });
  }

  void listColumns(const PointCloud& /*cloud*/, std::vector<ColumnKey>& columns) const override {
    columns.insert(columns.end(), axisColumns.begin(), axisColumns.begin() + 2);
  }

  Coverage coverage(BlockReader& block) const override {
    const Bounds bounds = block.bounds();
    const Bounds& box = outline_.bounds();
    for (std::size_t axis = 0; axis < 2; ++axis)
      if (bounds.high[axis] < box.low[axis] || bounds.low[axis] > box.high[axis]) return Coverage::None;
    return Coverage::Some;
  }

private:
  Outline outline_;
};

} // namespace

std::shared_ptr<const PointFilter> makePolygonFilter(std::span<const Polygon> polygons,
                                                     std::string& problem) {
  const bool anyLine = std::any_of(polygons.begin(), polygons.end(),
                                   [](const Polygon& polygon) { return !polygon.rings.empty(); });
  if (!anyLine) {
    problem = "The region holds no polygon. Give at least one with three corners or more.";
    return nullptr;
  }
  Outline outline(polygons);
  if (outline.crowding() > mostEdgesOfStrip) {
    problem = "The region has " + std::to_string(outline.crowding()) +
              " lines side by side at one height of the map, and each point there would be held against them "
              "all; " +
              std::to_string(mostEdgesOfStrip) +
              " are the most. Simplify its outline, or cut it into several.";
    return nullptr;
  }
  return std::make_shared<PolygonFilter>(std::move(outline));
}

Bounds boundsOf(const Region& region) {
  if (region.polygons.empty()) return region.box;
  Bounds box = Outline(region.polygons).bounds();
  box.low[2] = -std::numeric_limits<double>::infinity();
  box.high[2] = std::numeric_limits<double>::infinity();
  return box;
}

std::shared_ptr<const PointFilter> makeRegionFilter(const Region& region, std::string& problem) {
  if (region.polygons.empty()) return makeBoxFilter(region.box, problem);
  return makePolygonFilter(region.polygons, problem);
}

} // namespace Zamt::Host
