#include "host/surfaces/triangulate.h"

#include <algorithm>
#include <limits>
#include <tuple>
#include <utility>

namespace Zamt::Host {

namespace {

/// Sums about points at most `widestLattice` apart stay below 2^124.
__extension__ using Wide = __int128;

/// The corner that all triangles outside of the outline share: it has no place.
constexpr std::uint32_t nowhere = std::numeric_limits<std::uint32_t>::max();

constexpr std::size_t mostPoints = std::size_t{1} << 30;
constexpr std::size_t insertionsPerLook = 4096;

/// Counterclockwise. The neighbour `next[i]` lies across the side that is opposite `corner[i]`.
struct Triangle {
  std::array<std::uint32_t, 3> corner;
  std::array<std::uint32_t, 3> next;
};

constexpr std::size_t after(std::size_t place) { return place == 2 ? 0 : place + 1; }
constexpr std::size_t before(std::size_t place) { return place == 0 ? 2 : place - 1; }

std::size_t placeOf(const std::array<std::uint32_t, 3>& list, std::uint32_t sought) {
  return list[0] == sought ? 0 : list[1] == sought ? 1 : 2;
}

/// How far along a Hilbert curve through 2^24 by 2^24 cells a cell lies.
std::uint64_t alongCurve(std::uint64_t x, std::uint64_t y) {
  std::uint64_t along = 0;
  for (std::uint64_t half = 1U << 23U; half > 0; half >>= 1U) {
    const std::uint64_t right = (x & half) ? 1 : 0;
    const std::uint64_t upper = (y & half) ? 1 : 0;
    along = along << 2U | ((3 * right) ^ upper);
    if (upper != 0) continue;
    if (right != 0) {
      x = ~x;
      y = ~y;
    }
    std::swap(x, y);
  }
  return along;
}

/// Points are put in round by round, each with about twice as many as all before it, and in a round along a
/// curve: each then lies near the one before, and no arrangement of the points makes the work long.
std::uint64_t roundOf(std::uint32_t index) {
  constexpr std::uint64_t rounds = 16;
  const std::uint64_t mixed = (index + 1) * 0x9E3779B97F4A7C15U;
  std::uint64_t round = rounds - 1;
  for (std::uint64_t bit = 63; round > 0 && (mixed >> bit & 1U) == 0; --bit) --round;
  return round;
}

class Triangulator {
public:
  Triangulator(std::span<const LatticePoint> points, const Stop& stop) : points_(points), stop_(stop) {}

  bool run(std::string& problem) {
    if (!order(problem)) return false;
    if (!begin()) return true;
    for (std::size_t i = 0; i < order_.size(); ++i) {
      if (i % insertionsPerLook == 0 && stop_.requested()) {
        problem = stoppedMessage;
        return false;
      }
      insert(static_cast<std::uint32_t>(i));
    }
    return true;
  }

  void take(std::vector<std::array<std::uint32_t, 3>>& triangles) const {
    triangles.reserve(triangles_.size());
    for (const Triangle& triangle : triangles_)
      if (!isOutside(triangle))
        triangles.push_back(
            {order_[triangle.corner[0]], order_[triangle.corner[1]], order_[triangle.corner[2]]});
  }

private:
  struct Place {
    std::int64_t x;
    std::int64_t y;
    bool operator==(const Place&) const = default;
    bool operator<(const Place& other) const { return std::tie(x, y) < std::tie(other.x, other.y); }
  };

  /// Brings the points into the order in which they are put in. Corners are positions in that order.
  bool order(std::string& problem) {
    if (points_.size() > mostPoints) {
      problem = "These are more points than can be triangulated, which is 1,073,741,824. Keep to fewer.";
      return false;
    }
    if (points_.empty()) return true;
    const auto [west, east] = std::ranges::minmax(points_, {}, &LatticePoint::x);
    const auto [south, north] = std::ranges::minmax(points_, {}, &LatticePoint::y);
    const std::int64_t width = std::max(east.x - west.x, north.y - south.y);
    if (width > widestLattice) {
      problem = "The points lie too far apart to be triangulated. Look for strays among them, or keep to a "
                "region.";
      return false;
    }
    unsigned shift = 0;
    while ((width >> shift) >= std::int64_t{1} << 24U) ++shift;
    std::vector<std::pair<std::uint64_t, std::uint32_t>> keys(points_.size());
    for (std::uint32_t i = 0; i < keys.size(); ++i) {
      const auto column = static_cast<std::uint64_t>(points_[i].x - west.x) >> shift;
      const auto row = static_cast<std::uint64_t>(points_[i].y - south.y) >> shift;
      keys[i] = {roundOf(i) << 48U | alongCurve(column, row), i};
    }
    std::ranges::sort(keys);
    order_.resize(keys.size());
    places_.resize(keys.size());
    for (std::size_t i = 0; i < keys.size(); ++i) {
      order_[i] = keys[i].second;
      places_[i] = {points_[order_[i]].x - west.x, points_[order_[i]].y - south.y};
    }
    return true;
  }

  /// Positive where c lies left of the way from a to b.
  static std::int64_t side(const Place& a, const Place& b, const Place& c) {
    return (b.x - a.x) * (c.y - a.y) - (b.y - a.y) * (c.x - a.x);
  }

  /// Makes the first triangle; false when all points lie on one line.
  bool begin() {
    std::size_t second = 1;
    while (second < places_.size() && places_[second] == places_[0]) ++second;
    std::size_t third = second + 1;
    while (third < places_.size() && side(places_[0], places_[second], places_[third]) == 0) ++third;
    if (third >= places_.size()) return false;
    triangles_.reserve(2 * places_.size());
    const bool left = side(places_[0], places_[second], places_[third]) > 0;
    const auto b = static_cast<std::uint32_t>(left ? second : third);
    const auto c = static_cast<std::uint32_t>(left ? third : second);
    triangles_ = {{{0, b, c}, {1, 2, 3}},
                  {{nowhere, c, b}, {0, 3, 2}},
                  {{nowhere, 0, c}, {0, 1, 3}},
                  {{nowhere, b, 0}, {0, 2, 1}}};
    return true;
  }

  static bool isOutside(const Triangle& triangle) {
    return triangle.corner[placeOf(triangle.corner, nowhere)] == nowhere;
  }

  /// A triangle whose inside or border holds the point; where none does, one outside that it can be seen
  /// from.
  std::uint32_t locate(const Place& point) const {
    std::uint32_t at = last_;
    if (isOutside(triangles_[at])) at = triangles_[at].next[placeOf(triangles_[at].corner, nowhere)];
    for (;;) {
      const Triangle& triangle = triangles_[at];
      std::size_t out = 0;
      while (out < 3 &&
             side(places_[triangle.corner[after(out)]], places_[triangle.corner[before(out)]], point) >= 0)
        ++out;
      if (out == 3) return at;
      at = triangle.next[out];
      if (isOutside(triangles_[at])) return at;
    }
  }

  void insert(std::uint32_t index) {
    const Place& point = places_[index];
    const std::uint32_t at = locate(point);
    for (const std::uint32_t corner : triangles_[at].corner)
      if (corner != nowhere && places_[corner] == point) return keepLower(corner, index);
    split(at, index);
    last_ = at;
    while (!doubtful_.empty()) {
      const std::uint32_t triangle = doubtful_.back();
      doubtful_.pop_back();
      flipIfNeeded(triangle, index);
    }
  }

  /// Of two points at one place, the corner is the lower one, or the first in the list of equally low ones.
  void keepLower(std::uint32_t corner, std::uint32_t index) {
    const auto rank = [this](std::uint32_t i) { return std::pair(points_[order_[i]].z, order_[i]); };
    if (corner != index && rank(index) < rank(corner)) std::swap(order_[corner], order_[index]);
  }

  void replaceNeighbour(std::uint32_t triangle, std::uint32_t old, std::uint32_t now) {
    triangles_[triangle].next[placeOf(triangles_[triangle].next, old)] = now;
  }

  /// Three triangles in place of one; the new point is the first corner of each.
  void split(std::uint32_t at, std::uint32_t point) {
    const Triangle old = triangles_[at];
    const auto second = static_cast<std::uint32_t>(triangles_.size());
    const std::uint32_t third = second + 1;
    triangles_[at] = {{point, old.corner[1], old.corner[2]}, {old.next[0], second, third}};
    triangles_.push_back({{point, old.corner[2], old.corner[0]}, {old.next[1], third, at}});
    triangles_.push_back({{point, old.corner[0], old.corner[1]}, {old.next[2], at, second}});
    replaceNeighbour(old.next[1], at, second);
    replaceNeighbour(old.next[2], at, third);
    doubtful_ = {at, second, third};
  }

  /// Turns the side opposite the point, the triangle's first corner, if the triangle behind it may not stay.
  void flipIfNeeded(std::uint32_t near, std::uint32_t point) {
    const std::uint32_t far = triangles_[near].next[0];
    if (!mustGo(triangles_[far], point)) return;
    const Triangle one = triangles_[near];
    const Triangle other = triangles_[far];
    const std::size_t apex = placeOf(other.next, near);
    const std::uint32_t beyond = other.corner[apex];
    const std::uint32_t beyondFirst = other.next[after(apex)];
    triangles_[near] = {{point, one.corner[1], beyond}, {beyondFirst, far, one.next[2]}};
    triangles_[far] = {{point, beyond, one.corner[2]}, {other.next[before(apex)], one.next[1], near}};
    replaceNeighbour(beyondFirst, far, near);
    replaceNeighbour(one.next[1], near, far);
    doubtful_.push_back(near);
    doubtful_.push_back(far);
  }

  /// Whether the point lies inside the circle around a triangle. That of a triangle outside is the half plane
  /// beyond its side of the outline, with the inside of that side.
  bool mustGo(const Triangle& triangle, std::uint32_t point) const {
    const Place& p = places_[point];
    const std::size_t open = placeOf(triangle.corner, nowhere);
    if (triangle.corner[open] != nowhere) return isInCircle(triangle, p);
    const Place& from = places_[triangle.corner[after(open)]];
    const Place& to = places_[triangle.corner[before(open)]];
    const std::int64_t beyond = side(from, to, p);
    return beyond > 0 || (beyond == 0 && std::min(from, to) < p && p < std::max(from, to));
  }

  bool isInCircle(const Triangle& triangle, const Place& p) const {
    const Place& a = places_[triangle.corner[0]];
    const Place& b = places_[triangle.corner[1]];
    const Place& c = places_[triangle.corner[2]];
    const Place toA{a.x - p.x, a.y - p.y};
    const Place toB{b.x - p.x, b.y - p.y};
    const Place toC{c.x - p.x, c.y - p.y};
    const auto square = [](const Place& v) { return v.x * v.x + v.y * v.y; };
    const auto area = [](const Place& v, const Place& w) { return v.x * w.y - v.y * w.x; };
    const Wide inside = static_cast<Wide>(square(toA)) * area(toB, toC) +
                        static_cast<Wide>(square(toB)) * area(toC, toA) +
                        static_cast<Wide>(square(toC)) * area(toA, toB);
    if (inside != 0) return inside > 0;
    // All four on one circle: the side that leads to the lowest stays. Turning it joins p and the corner that
    // lies opposite to it.
    const Place& lowest = std::min({a, b, c, p});
    return lowest == p || lowest == opposite(a, b, c, p);
  }

  /// The corner of a triangle that lies across from a point on its circle.
  static const Place& opposite(const Place& a, const Place& b, const Place& c, const Place& p) {
    if (side(a, b, p) < 0) return c;
    return side(b, c, p) < 0 ? a : b;
  }

  std::span<const LatticePoint> points_;
  const Stop& stop_;
  std::vector<std::uint32_t> order_; ///< For each corner, the point that it is.
  std::vector<Place> places_;        ///< Of the corners.
  std::vector<Triangle> triangles_;
  std::vector<std::uint32_t> doubtful_;
  std::uint32_t last_ = 0;
};

} // namespace

bool triangulate(std::span<const LatticePoint> points, const Stop& stop,
                 std::vector<std::array<std::uint32_t, 3>>& triangles, std::string& problem) {
  triangles.clear();
  Triangulator triangulator(points, stop);
  if (!triangulator.run(problem)) return false;
  triangulator.take(triangles);
  return true;
}

} // namespace Zamt::Host
