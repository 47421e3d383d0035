#include "host/filters/NeighbourFilter.h"
#include "tests/filters/FilterClouds.h"

#include <gmock/gmock.h>

#include <limits>
#include <random>

namespace Zamt::Host {
namespace {

using Testing::TestPoint;

std::vector<std::uint32_t> countNaively(const PointCloud& cloud, double radius) {
  const auto p = Testing::positionsOf(cloud);
  std::vector<std::uint32_t> counts(p.size(), 0);
  for (std::size_t i = 0; i < p.size(); ++i)
    for (std::size_t j = 0; j < p.size(); ++j) {
      const double dx = p[i][0] - p[j][0];
      const double dy = p[i][1] - p[j][1];
      const double dz = p[i][2] - p[j][2];
      counts[i] += i != j && dx * dx + dy * dy + dz * dz <= radius * radius ? 1 : 0;
    }
  return counts;
}

using Limits = std::pair<double, double>;

void expectKeeps(const PointCloud& cloud, double radius, const std::vector<std::uint32_t>& counts,
                 const Limits& limits, const PointMask& asked) {
  const auto& [minimum, maximum] = limits;
  std::string problem;
  const auto filter = makeNeighbourFilter(cloud, radius, minimum, maximum, problem);
  ASSERT_NE(filter, nullptr) << problem;
  PointMask holds(cloud.size());
  ASSERT_TRUE(filter->test(asked, Testing::goOn, holds, problem)) << problem;
  std::uint64_t wrong = 0;
  for (std::uint64_t i = 0; i < cloud.size(); ++i) {
    const bool expected = asked.test(i) && counts[i] >= minimum && counts[i] <= maximum;
    wrong += holds.test(i) != expected ? 1 : 0;
  }
  EXPECT_EQ(wrong, 0U) << "radius " << radius << ", " << minimum << " to " << maximum << ", asked "
                       << asked.count();
}

/// All points, every third, and so few that only their surroundings matter; all kinds of limits.
void expectAgrees(const PointCloud& cloud, double radius, const std::vector<std::uint32_t>& counts) {
  for (const std::uint64_t step : {1U, 3U, 100U}) {
    PointMask asked(cloud.size());
    for (std::uint64_t i = 0; i < cloud.size(); i += step) asked.set(i);
    const double middle = counts[counts.size() / 2];
    for (const Limits& limits : {Limits{0, 3}, Limits{middle, middle}, Limits{middle, 1e9},
                                 Limits{middle / 2 + 0.5, middle * 2}, Limits{-5, 0}, Limits{2, 1}})
      expectKeeps(cloud, radius, counts, limits, asked);
  }
}

void expectAgreesEverywhere(const PointCloud& cloud, double radius) {
  const std::vector<std::uint32_t> counts = countNaively(cloud, radius);
  expectAgrees(cloud, radius, counts);
  expectAgrees(*Testing::asArrays(cloud), radius, counts);
}

std::shared_ptr<PointCloud> makeCloud(std::size_t points, const std::array<std::uint32_t, 3>& extent) {
  std::mt19937 random(5);
  std::vector<TestPoint> made(points);
  for (TestPoint& point : made)
    for (std::size_t axis = 0; axis < 3; ++axis)
      point.stored[axis] = static_cast<std::int32_t>(random() % extent[axis]) - 300;
  return Testing::makeTestCloud(made);
}

TEST(NeighbourFilter, AgreesWithAllPairsOnAGridWithTies) {
  // Hundredths of a unit on a small grid: many pairs at exactly the radius, and many at one place.
  const auto cloud = makeCloud(3000, {40, 40, 30});
  for (const double radius : {0.0, 0.01, 0.03, 0.05, 0.13, 0.3, 0.6, 100.0})
    expectAgreesEverywhere(*cloud, radius);
}

TEST(NeighbourFilter, AgreesWithAllPairsWhereFineCellsAreCountedWhole) {
  const auto cloud = makeCloud(9000, {1000, 1000, 200});
  for (const double radius : {1.5, 3.0, 6.0}) expectAgreesEverywhere(*cloud, radius);
}

TEST(NeighbourFilter, FarOutliersAndTinyRadiiNeedNoSpaceForTheEmptinessBetween) {
  std::mt19937 random(9);
  std::vector<TestPoint> points(2000);
  for (TestPoint& point : points)
    for (std::int32_t& value : point.stored) value = static_cast<std::int32_t>(random() % 60);
  constexpr std::int32_t far = std::numeric_limits<std::int32_t>::max();
  for (std::int32_t i = 0; i < 3; ++i) points.push_back({{far - i, -far + i, far}, 0, 0, {}});
  const auto cloud = Testing::makeTestCloud(points);
  for (const double radius : {0.0, 1e-200, 0.01, 0.1, 1e7, 1e300}) expectAgreesEverywhere(*cloud, radius);
}

TEST(NeighbourFilter, AgreesWithAllPairsOnALineOnePointAndARealCloud) {
  std::vector<TestPoint> points(500);
  for (std::int32_t i = 0; i < 500; ++i) points.push_back({{i * 7, 0, 0}, 0, 0, {}});
  const auto cloud = Testing::makeTestCloud(points);
  for (const double radius : {0.0, 0.07, 0.5, 50.0}) expectAgreesEverywhere(*cloud, radius);
  expectAgreesEverywhere(*Testing::makeTestCloud({TestPoint{}}), 1);
  if (const auto real = Testing::openTestData("ahn3_crop.las")) expectAgreesEverywhere(*real, 1.5);
}

TEST(NeighbourFilter, RefusesWhatIsNoDistanceOrNoNumber) {
  constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();
  const auto cloud = makeCloud(10, {10, 10, 10});
  std::string problem;
  for (const double radius : {-1.0, notANumber}) {
    EXPECT_EQ(makeNeighbourFilter(*cloud, radius, 0, 3, problem), nullptr);
    EXPECT_EQ(problem, "The radius of neighbours is a distance. Give 0 or more.");
  }
  EXPECT_EQ(makeNeighbourFilter(*cloud, 1, 0, notANumber, problem), nullptr);
  EXPECT_EQ(problem, "The number of neighbours needs a number at both ends of its range.");
}

} // namespace
} // namespace Zamt::Host
