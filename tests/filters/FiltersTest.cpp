#include "host/clouds/cloudInfo.h"
#include "host/filters/BoxFilter.h"
#include "host/filters/ClassFilter.h"
#include "host/filters/DirectionFilter.h"
#include "host/filters/PolygonFilter.h"
#include "host/filters/RangeFilter.h"
#include "host/filters/Selection.h"
#include "host/filters/SphereFilter.h"
#include "tests/filters/FilterClouds.h"

#include <cmath>
#include <cstring>
#include <functional>
#include <limits>
#include <numbers>
#include <random>

namespace Zamt::Host {
namespace {

using Testing::TestPoint;
using FilterPtr = std::shared_ptr<const PointFilter>;

constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();

/// The filter must keep exactly the points that `naive` says, and inverted, exactly the others.
void expectKeeps(const PointCloud& cloud, const FilterPtr& filter, const std::string& what,
                 const std::function<bool(std::uint64_t)>& naive) {
  ASSERT_NE(filter, nullptr) << what;
  for (const bool invert : {false, true}) {
    PointMask kept;
    std::string problem;
    ASSERT_TRUE(evaluateSelection(cloud, {{-1, -1, filter, nullptr, invert}}, Testing::goOn, kept, problem))
        << problem;
    std::uint64_t wrong = 0;
    for (std::uint64_t i = 0; i < cloud.size(); ++i) wrong += kept.test(i) != (naive(i) != invert) ? 1 : 0;
    EXPECT_EQ(wrong, 0U) << what << (invert ? ", inverted" : "") << ", of " << cloud.size();
  }
}

/// Rows of points that ascend in x, so that whole blocks lie inside or outside of a region.
std::shared_ptr<PointCloud> makeCloud(std::size_t points) {
  std::mt19937 random(7);
  std::vector<TestPoint> made(points);
  for (std::size_t i = 0; i < points; ++i) {
    TestPoint& point = made[i];
    point.stored = {static_cast<std::int32_t>(i / 40), static_cast<std::int32_t>(random() % 2000),
                    static_cast<std::int32_t>(random() % 500)};
    point.intensity = static_cast<std::uint16_t>(random() % 1000);
    point.number = static_cast<std::uint8_t>(random());
    for (float& value : point.normal) value = static_cast<float>(static_cast<int>(random() % 41) - 20) / 4;
    if (i % 97 == 0) point.normal = {0, 0, 0};
    if (i % 101 == 0) point.normal[1] = std::numeric_limits<float>::quiet_NaN();
  }
  return Testing::makeTestCloud(made);
}

/// The cloud that was made, and the real ones that there are, each as a LAS file, as a LAZ file and as
/// arrays; and clouds in the nodes of a tree.
std::vector<std::shared_ptr<PointCloud>> allClouds() {
  std::vector<std::shared_ptr<PointCloud>> clouds{makeCloud(3 * blockPoints + 77)};
  for (const char* name : {"autzen-thin.las", "ahn3_crop.las", "extrabytes.las"})
    if (auto cloud = Testing::openTestData(name)) clouds.push_back(cloud);
  const std::size_t files = clouds.size();
  for (std::size_t i = 0; i < files; ++i) {
    clouds.push_back(Testing::asArrays(*clouds[i]));
    clouds.push_back(Testing::asLaz(*clouds[i]));
  }
  for (const char* name : {"laz/copc_pf7.copc.laz", "laz/copc_pf7_big.copc.laz"})
    if (auto cloud = Testing::openTestData(name)) clouds.push_back(cloud);
  return clouds;
}

Bounds boundsOf(const PointCloud& cloud) {
  CloudInfo info;
  std::string problem;
  EXPECT_TRUE(inspectCloud(cloud, Testing::goOn, info, problem)) << problem;
  return info.bounds;
}

TEST(ClassFilter, KeepsTheListedNumbersOfAnyFieldOfWholeNumbers) {
  const std::vector<std::int64_t> listed{2, 5, 255, 256, 999, -1, 2};
  for (const auto& cloud : allClouds())
    for (const char* field : {"Classification", "Intensity"})
      for (const auto& numbers : {listed, {}}) {
        const std::vector<double> values = Testing::readField(*cloud, field);
        std::string problem;
        expectKeeps(*cloud, makeClassFilter(*cloud, field, numbers, problem), cloud->path() + field,
                    [&](std::uint64_t i) { return std::ranges::count(numbers, values[i]) != 0; });
      }
}

TEST(RangeFilter, IncludesBothEndsAndNeverTakesNoValue) {
  for (const auto& cloud : allClouds())
    for (const Field& field : cloud->fields()) {
      const std::vector<double> values = Testing::readField(*cloud, field.name);
      const double low = values[values.size() / 3];
      const double high = values[values.size() / 2];
      std::string problem;
      expectKeeps(*cloud, makeRangeFilter(*cloud, field.name, 0, low, high, problem), field.name,
                  [&](std::uint64_t i) { return values[i] >= low && values[i] <= high; });
      expectKeeps(*cloud, makeRangeFilter(*cloud, field.name, 0, -1e300, 1e300, problem), field.name,
                  [&](std::uint64_t i) { return !std::isnan(values[i]); });
    }
}

TEST(DirectionFilter, KeepsNormalsNearTheHorizontal) {
  const auto cloud = makeCloud(20000);
  const auto x = Testing::readField(*cloud, "NormalVectorX");
  const auto y = Testing::readField(*cloud, "NormalVectorY");
  const auto z = Testing::readField(*cloud, "NormalVectorZ");
  // The components are quarters, so that 45 degrees is met exactly and often.
  for (const double tolerance : {0.0, 15.0, 45.0, 89.9, 90.0}) {
    std::string problem;
    expectKeeps(*cloud, makeDirectionFilter(*cloud, "NormalVector", tolerance, problem),
                std::to_string(tolerance), [&](std::uint64_t i) {
                  if (std::isnan(y[i]) || (x[i] == 0 && y[i] == 0 && z[i] == 0)) return false;
                  const double angle =
                      std::atan2(std::fabs(z[i]), std::hypot(x[i], y[i])) * 180 / std::numbers::pi;
                  return angle <= tolerance;
                });
  }
}

TEST(BoxFilter, IncludesItsFaces) {
  for (const auto& cloud : allClouds()) {
    const Bounds all = boundsOf(*cloud);
    const auto positions = Testing::positionsOf(*cloud);
    Bounds cornered = all;
    cornered.high = positions[positions.size() / 2];
    Bounds slab = all;
    slab.high[0] = (all.low[0] + all.high[0]) / 2;
    for (const Bounds& box : {all, cornered, slab, Bounds{}}) {
      std::string problem;
      expectKeeps(*cloud, makeBoxFilter(box, problem), cloud->path(), [&](std::uint64_t i) {
        const auto& p = positions[i];
        for (std::size_t axis = 0; axis < 3; ++axis)
          if (!(p[axis] >= box.low[axis] && p[axis] <= box.high[axis])) return false;
        return true;
      });
    }
  }
}

TEST(BoxFilter, LeavesNodesOfATreeOutsideOfItUnread) {
  const auto sound = Testing::openTestData("laz/copc_pf7.copc.laz");
  if (!sound) GTEST_SKIP() << "No compressed clouds.";
  const auto positions = Testing::positionsOf(*sound);
  Bounds box = boundsOf(*sound);
  for (const std::size_t axis : {0U, 1U}) box.high[axis] = 0.7 * box.low[axis] + 0.3 * box.high[axis];
  std::string bytes = Testing::readFile(sound->path());
  const auto number = [&]<class T>(std::size_t at, T value) {
    std::memcpy(&value, &bytes[at], sizeof(T));
    return value;
  };
  std::size_t damaged = 0;
  const auto page = static_cast<std::size_t>(number(429 + 40, std::uint64_t{}));
  for (std::size_t at = page; at < page + number(429 + 48, std::uint64_t{}); at += 32) {
    const double edge = std::ldexp(2 * number(429 + 24, 0.0), -number(at, 0));
    bool meets = true;
    for (const std::size_t axis : {0U, 1U})
      meets = meets &&
              number(429 + 8 * axis, 0.0) - number(429 + 24, 0.0) + edge * number(at + 4 + 4 * axis, 0) <=
                  box.high[axis] + 1;
    if (meets || number(at + 28, 0) <= 0) continue;
    bytes[static_cast<std::size_t>(number(at + 16, std::uint64_t{})) + 36] ^=
        0x55; // the number of its points
    ++damaged;
  }
  EXPECT_GT(damaged, 10U);
  const Testing::TemporaryDirectory directory;
  std::string problem;
  const auto cloud = openCloud(directory.write("a.laz", bytes), problem);
  ASSERT_NE(cloud, nullptr) << problem;
  PointMask kept;
  ASSERT_TRUE(evaluateSelection(*cloud, {{-1, -1, makeBoxFilter(box, problem), nullptr, false}},
                                Testing::goOn, kept, problem))
      << problem;
  EXPECT_EQ(kept.count(), std::ranges::count_if(positions, [&](const auto& p) {
              return p[0] <= box.high[0] && p[1] <= box.high[1];
            }));
  ClassCounts counts;
  EXPECT_FALSE(countClasses(*cloud, Testing::goOn, counts, problem));
}

TEST(SphereFilter, IncludesItsSurface) {
  for (const auto& cloud : allClouds()) {
    const Bounds all = boundsOf(*cloud);
    const auto positions = Testing::positionsOf(*cloud);
    const auto centre = positions[positions.size() / 2];
    const double width = all.high[0] - all.low[0];
    for (const double radius : {0.0, 0.05, width / 10, width / 2, width * 100}) {
      std::string problem;
      expectKeeps(*cloud, makeSphereFilter(centre, radius, problem), cloud->path(), [&](std::uint64_t i) {
        const auto& p = positions[i];
        const double dx = p[0] - centre[0];
        const double dy = p[1] - centre[1];
        const double dz = p[2] - centre[2];
        return dx * dx + dy * dy + dz * dz <= radius * radius;
      });
    }
  }
}

TEST(PolygonFilter, HolesAreOutsideAndEveryLineIsInside) {
  // A grid of points at whole units from (1000, -500), so that corners, edges and diagonals are met exactly.
  std::vector<TestPoint> points;
  for (int y = -1; y <= 13; ++y)
    for (int x = -1; x <= 13; ++x) points.push_back({{x * 100, y * 100, 0}, 0, 0, {}});
  const auto cloud = Testing::makeTestCloud(points);
  const std::vector<Polygon> polygons{
      {{{{1000, -500}, {1006, -500}, {1006, -494}, {1000, -494}},
        {{1001, -499}, {1005, -499}, {1005, -495}, {1001, -495}, {1001, -499}}}}, // A hole.
      {{{{1003, -497}, {1012, -497}, {1003, -488}}}},                             // Overlaps it.
  };
  const auto positions = Testing::positionsOf(*cloud);
  std::string problem;
  expectKeeps(*cloud, makePolygonFilter(polygons, problem), "grid", [&](std::uint64_t i) {
    const double x = positions[i][0] - 1000;
    const double y = positions[i][1] + 500;
    const bool inHole = x > 1 && x < 5 && y > 1 && y < 5;
    const bool inTriangle = x >= 3 && y >= 3 && x + y <= 15;
    return (x >= 0 && x <= 6 && y >= 0 && y <= 6 && !inHole) || inTriangle;
  });
}

/// Even-odd for one point, by counting the edges to its right.
bool naivelyInside(const Polygon& polygon, double x, double y) {
  bool inside = false;
  for (const Ring& ring : polygon.rings)
    for (std::size_t i = 0; i < ring.size(); ++i) {
      const auto& a = ring[i];
      const auto& b = ring[(i + 1) % ring.size()];
      if ((a[1] > y) != (b[1] > y) && x < a[0] + (y - a[1]) / (b[1] - a[1]) * (b[0] - a[0])) inside = !inside;
    }
  return inside;
}

TEST(PolygonFilter, AgreesWithCountingEdgesOnManyCorneredOutlines) {
  std::mt19937 random(3);
  for (const auto& cloud : allClouds()) {
    const Bounds all = boundsOf(*cloud);
    const auto corner = [&](std::size_t axis) {
      const double share = static_cast<double>(random()) / 4294967296.0 * 1.2 - 0.1;
      return all.low[axis] + share * (all.high[axis] - all.low[axis]);
    };
    const auto positions = Testing::positionsOf(*cloud);
    std::vector<Polygon> polygons(3);
    for (Polygon& polygon : polygons)
      for (const std::size_t corners : {3U, 40U}) {
        Ring& ring = polygon.rings.emplace_back();
        for (std::size_t i = 0; i < corners; ++i) ring.push_back({corner(0), corner(1)});
      }
    std::string problem;
    expectKeeps(*cloud, makePolygonFilter(polygons, problem), cloud->path(), [&](std::uint64_t i) {
      const auto& p = positions[i];
      return std::any_of(polygons.begin(), polygons.end(),
                         [&](const Polygon& polygon) { return naivelyInside(polygon, p[0], p[1]); });
    });
  }
}

TEST(Filters, SayWhatThereIsInsteadOfWhatIsMissing) {
  const auto cloud = makeCloud(10);
  std::string names;
  for (const Field& field : cloud->fields()) names += (names.empty() ? "" : ", ") + field.name;
  std::string p;
  const auto expectRefused = [&p](const FilterPtr& made, const std::string& problem) {
    EXPECT_EQ(made, nullptr) << problem;
    EXPECT_EQ(p, problem);
  };
  expectRefused(makeRangeFilter(*cloud, "Amplitud", 0, 0, 1, p),
                "There is no field called \"Amplitud\"; this cloud has " + names + ".");
  expectRefused(makeRangeFilter(*cloud, "Intensity", 0.5, 0, 1, p),
                "The field \"Intensity\" has one value per point. Leave the component out, or give 0.");
  expectRefused(makeRangeFilter(*cloud, "Intensity", 0, notANumber, 1, p),
                "The range of \"Intensity\" needs a number at both ends.");
  expectRefused(makeClassFilter(*cloud, "NormalVectorX", {}, p),
                "The field \"NormalVectorX\" holds fractions, not class numbers. Name a field of whole "
                "numbers, such as \"Classification\".");
  expectRefused(makeDirectionFilter(*cloud, "Normal", 15, p),
                "There is no field called \"Normal\" with three components, nor fields called \"NormalX\", "
                "\"NormalY\" and \"NormalZ\"; this cloud has " +
                    names + ". Compute the normals first, or name the field that holds them.");
  expectRefused(makeDirectionFilter(*cloud, "NormalVector", -1, p),
                "The tolerance of a direction is an angle in degrees. Give 0 or more.");
  expectRefused(makeSphereFilter({}, -1, p), "The radius of a ball is a distance. Give 0 or more.");
  expectRefused(makeSphereFilter({0, notANumber, 0}, 1, p),
                "The centre of a ball needs three numbers, x, y and z.");
  expectRefused(makeBoxFilter({{0, 0, 0}, {1, notANumber, 1}}, p),
                "A box needs a number at each of its ends.");
  expectRefused(makePolygonFilter({}, p),
                "The region holds no polygon. Give at least one with three corners or more.");
  Polygon comb{{{}}};
  for (int i = 0; i < 5000; ++i) comb.rings[0].insert(comb.rings[0].end(), {{i * 1.0, 0}, {i + 0.5, 100}});
  EXPECT_NE(makePolygonFilter({&comb, 1}, p), nullptr) << p;
  comb.rings[0].insert(comb.rings[0].end(), {{5000, 0}, {5000.5, 100}});
  expectRefused(
      makePolygonFilter({&comb, 1}, p),
      "The region has 10002 lines side by side at one height of the map, and each point there would be "
      "held against them all; 10000 are the most. Simplify its outline, or cut it into several.");
}

} // namespace
} // namespace Zamt::Host
