#include "host/surfaces/triangulate.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <set>

namespace Zamt::Host {
namespace {

using Places = std::vector<LatticePoint>;
using Corner = std::array<double, 3>;

std::int64_t side(const LatticePoint& a, const LatticePoint& b, const LatticePoint& c) {
  return (b.x - a.x) * (c.y - a.y) - (b.y - a.y) * (c.x - a.x);
}

/// Positive where d lies inside the circle around a, b, c; small numbers only.
std::int64_t inside(const LatticePoint& a, const LatticePoint& b, const LatticePoint& c,
                    const LatticePoint& d) {
  const auto lift = [&d](const LatticePoint& p) {
    return (p.x - d.x) * (p.x - d.x) + (p.y - d.y) * (p.y - d.y);
  };
  return lift(a) * side(d, b, c) + lift(b) * side(d, c, a) + lift(c) * side(d, a, b);
}

/// The triangles by their corners, whatever order the points came in. Each turns left and has nothing inside
/// its circle, and what lies left of a side has it from the other side too unless nothing is there: so they
/// cover all that lies between the points once.
std::set<std::set<Corner>> triangulated(const Places& points) {
  std::vector<std::array<std::uint32_t, 3>> triangles;
  std::string problem;
  EXPECT_TRUE(triangulate(points, Stop(), triangles, problem)) << problem;
  std::set<std::set<Corner>> found;
  std::set<std::pair<std::uint32_t, std::uint32_t>> sides;
  for (const auto& [a, b, c] : triangles) {
    EXPECT_GT(side(points[a], points[b], points[c]), 0);
    for (const LatticePoint& other : points) EXPECT_LE(inside(points[a], points[b], points[c], other), 0);
    for (const auto& way : {std::pair(a, b), std::pair(b, c), std::pair(c, a)})
      EXPECT_TRUE(sides.insert(way).second);
    std::set<Corner> corners;
    for (const std::uint32_t i : {a, b, c})
      corners.insert({static_cast<double>(points[i].x), static_cast<double>(points[i].y), points[i].z});
    found.insert(std::move(corners));
  }
  for (const auto& [from, to] : sides) {
    if (sides.contains({to, from})) continue;
    for (const LatticePoint& other : points) EXPECT_GE(side(points[from], points[to], other), 0);
  }
  return found;
}

bool allInLine(const Places& points) {
  return std::ranges::all_of(points, [&](const LatticePoint& a) {
    return std::ranges::all_of(points, [&](const LatticePoint& b) { return side(points[0], a, b) == 0; });
  });
}

// Small lattices are full of points above one another, in one line and on one circle.
TEST(Triangulate, CoversThePointsWithTheSameEmptyCirclesInWhateverOrderTheyCome) {
  std::mt19937 random(3);
  const auto below = [&random](std::int64_t bound) { return static_cast<std::int64_t>(random()) % bound; };
  for (int round = 0; round < 3000; ++round) {
    Places points(static_cast<std::size_t>(1 + below(30)));
    const std::int64_t width = 1 + below(10);
    for (LatticePoint& point : points) point = {below(width), below(width), static_cast<double>(below(3))};
    const auto triangles = triangulated(points);
    EXPECT_EQ(triangles.empty(), allInLine(points));
    for (const LatticePoint& point : points)
      for (const auto& corners : triangles)
        EXPECT_TRUE(std::ranges::none_of(corners, [&](const Corner& corner) {
          return corner[0] == static_cast<double>(point.x) && corner[1] == static_cast<double>(point.y) &&
                 corner[2] > point.z;
        }));
    std::ranges::shuffle(points, random);
    EXPECT_EQ(triangulated(points), triangles);
  }
}

TEST(Triangulate, TakesTheWidestLatticeAndRefusesWiderOnes) {
  std::vector<std::array<std::uint32_t, 3>> triangles;
  std::string problem;
  const Places square{{0, 0}, {widestLattice, 0}, {widestLattice, widestLattice}, {0, widestLattice}, {1, 1}};
  EXPECT_TRUE(triangulate(square, Stop(), triangles, problem));
  EXPECT_EQ(triangles.size(), 4U);
  const Places wide{{0, 0}, {widestLattice + 1, 0}, {5, 5}};
  EXPECT_FALSE(triangulate(wide, Stop(), triangles, problem));
  EXPECT_NE(problem.find("Look for strays"), std::string::npos);
}

} // namespace
} // namespace Zamt::Host
