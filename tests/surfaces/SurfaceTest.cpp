#include "host/surfaces/Surface.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>

namespace Zamt::Host {
namespace {

using Vec = std::array<double, 3>;

/// The height of one triangle by barycentric coordinates in long double, or NaN: a way of its own.
long double heightByAreas(const Vec& a, const Vec& b, const Vec& c, double x, double y) {
  const auto area = [](long double px, long double py, long double qx, long double qy, long double rx,
                       long double ry) { return (qx - px) * (ry - py) - (qy - py) * (rx - px); };
  const long double whole = area(a[0], a[1], b[0], b[1], c[0], c[1]);
  const long double u = area(b[0], b[1], c[0], c[1], x, y) / whole;
  const long double v = area(c[0], c[1], a[0], a[1], x, y) / whole;
  constexpr long double slack = -1e-9L;
  if (whole == 0 || u < slack || v < slack || 1 - u - v < slack)
    return std::numeric_limits<double>::quiet_NaN();
  return u * a[2] + v * b[2] + (1 - u - v) * c[2];
}

double bruteDistance(const Mesh& mesh, const Vec& p) {
  double best = std::numeric_limits<double>::quiet_NaN();
  for (const auto& t : mesh.triangles) {
    const auto height = static_cast<double>(
        heightByAreas(mesh.vertices[t[0]], mesh.vertices[t[1]], mesh.vertices[t[2]], p[0], p[1]));
    if (std::isnan(height)) continue;
    if (std::isnan(best) || std::abs(p[2] - height) < std::abs(best)) best = p[2] - height;
  }
  return best;
}

void addQuad(Mesh& mesh, const Vec& a, const Vec& b, const Vec& c, const Vec& d) {
  const auto first = static_cast<std::uint32_t>(mesh.vertices.size());
  mesh.vertices.insert(mesh.vertices.end(), {a, b, c, d});
  mesh.triangles.push_back({first, first + 1, first + 2});
  mesh.triangles.push_back({first, first + 2, first + 3});
}

/// The distances of these points agree with the brute ones; how many points the mesh covers.
int expectAgrees(const Mesh& mesh, const Surface& surface, const std::vector<Vec>& points, double tolerance) {
  int covered = 0;
  for (const Vec& p : points) {
    const double expected = bruteDistance(mesh, p);
    const double found = surface.verticalDistance(p[0], p[1], p[2]);
    EXPECT_EQ(std::isnan(found), std::isnan(expected));
    if (std::isnan(expected)) continue;
    ++covered;
    EXPECT_NEAR(found, expected, tolerance);
  }
  return covered;
}

TEST(Surface, LeavesNoCracksBetweenNeighboursOfAnySize) {
  std::mt19937 random(7);
  std::uniform_real_distribution<double> jitter(-0.45, 0.45);
  constexpr std::uint32_t side = 40;
  Mesh mesh;
  for (std::uint32_t r = 0; r <= side; ++r)
    for (std::uint32_t c = 0; c <= side; ++c) {
      const bool inner = r > 0 && r < side && c > 0 && c < side;
      // Growing by the square, so that triangles of very different size meet.
      const double x = c + (inner ? jitter(random) : 0);
      const double y = r + (inner ? jitter(random) : 0);
      mesh.vertices.push_back({85000.123 + x * x / 40, 447400.456 + y * y / 40, x + 2 * y});
    }
  for (std::uint32_t r = 0; r < side; ++r)
    for (std::uint32_t c = 0; c < side; ++c) {
      const std::uint32_t v = r * (side + 1) + c;
      mesh.triangles.push_back({v, v + 1, v + side + 2});
      mesh.triangles.push_back({v + side + 1, v, v + side + 2});
    }
  const Surface surface(mesh);
  for (const auto& t : mesh.triangles)
    for (std::size_t k = 0; k < 3; ++k) {
      const Vec& a = mesh.vertices[t[k]];
      const Vec& b = mesh.vertices[t[(k + 1) % 3]];
      EXPECT_NEAR(surface.verticalDistance(a[0], a[1], a[2]), 0, 1e-9);
      for (const double w : {0.5, 0.1, 0.3377})
        EXPECT_NEAR(surface.verticalDistance(a[0] + w * (b[0] - a[0]), a[1] + w * (b[1] - a[1]),
                                             a[2] + w * (b[2] - a[2])),
                    0, 1e-6);
    }
  std::uniform_real_distribution<double> across(-1, 41);
  std::vector<Vec> points(2000);
  for (Vec& p : points) p = {85000.123 + across(random), 447400.456 + across(random), across(random)};
  EXPECT_GT(expectAgrees(mesh, surface, points, 1e-7), 1000);
}

TEST(Surface, AgreesWithBruteForceOnTrianglesOfEveryShape) {
  std::mt19937 random(11);
  std::uniform_real_distribution<double> place(0, 100);
  std::uniform_real_distribution<double> exponent(-6, 5);
  Mesh mesh;
  for (std::uint32_t i = 0; i < 300; ++i) {
    const double size = std::pow(10, exponent(random));
    const double flat = std::pow(10, exponent(random) - 5);
    const Vec a{place(random), place(random), place(random)};
    mesh.vertices.push_back(a);
    mesh.vertices.push_back({a[0] + size, a[1] + size * (place(random) - 50), place(random)});
    mesh.vertices.push_back({a[0] + size * place(random), a[1] + size * flat, place(random)});
    mesh.triangles.push_back({3 * i, 3 * i + 1, 3 * i + 2});
  }
  std::vector<Vec> points(3000);
  for (Vec& p : points) p = {place(random), place(random), place(random)};
  EXPECT_GT(expectAgrees(mesh, Surface(mesh), points, 1e-5), 1000);
}

TEST(Surface, ItsOuterEdgeReachesAsFarAsTwoSpellingsOfACoordinateLieApart) {
  constexpr double low = 447455.577;
  constexpr double high = 447456.577;
  Mesh mesh;
  addQuad(mesh, {low, low, 1}, {high, low, 1}, {high, high, 1}, {low, high, 1});
  const Surface surface(mesh);
  const double middle = (low + high) / 2;
  for (const double edge : {low, high})
    for (const double outwards : {std::nextafter(edge, 2 * edge - middle), edge + (edge - middle) * 1e-6}) {
      const bool reached = std::abs(outwards - edge) < 1e-9;
      EXPECT_EQ(std::isnan(surface.verticalDistance(outwards, middle, 3)), !reached) << edge;
      EXPECT_EQ(std::isnan(surface.verticalDistance(middle, outwards, 3)), !reached) << edge;
    }
}

TEST(Surface, TheSheetNearestInHeightCountsAndWallsDoNot) {
  Mesh mesh;
  addQuad(mesh, {0, 0, 0}, {10, 0, 0}, {10, 10, 0}, {0, 10, 0});
  addQuad(mesh, {0, 0, 8}, {10, 0, 8}, {10, 10, 8}, {0, 10, 8});
  addQuad(mesh, {5.1, 0, 0}, {5.1, 10, 0}, {5.1, 10, 8}, {5.1, 0, 8});
  mesh.vertices.push_back({std::numeric_limits<double>::quiet_NaN(), 20, 20});
  mesh.triangles.push_back({0, 1, 12});
  const Surface surface(mesh);
  EXPECT_EQ(surface.size(), 4U);
  EXPECT_EQ(surface.verticalDistance(5.1, 5, 3), 3);
  EXPECT_EQ(surface.verticalDistance(5.1, 5, 6), -2);
  EXPECT_EQ(surface.verticalDistance(0, 10, 9), 1);
  EXPECT_TRUE(std::isnan(surface.verticalDistance(10.0001, 5, 0)));
  EXPECT_TRUE(std::isnan(surface.verticalDistance(std::numeric_limits<double>::quiet_NaN(), 5, 0)));
}

} // namespace
} // namespace Zamt::Host
