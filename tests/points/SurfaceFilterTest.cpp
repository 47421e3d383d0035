#include "host/points/SurfaceFilter.h"
#include "host/points/ExpressionFilter.h"
#include "host/points/Selection.h"
#include "host/points/SurfaceFile.h"
#include "tests/points/FilterClouds.h"

namespace Zamt::Host {
namespace {

/// How many points of a real cloud a filter keeps.
std::uint64_t countKept(const PointCloud& cloud, const std::shared_ptr<const PointFilter>& filter) {
  PointMask kept;
  std::string problem;
  EXPECT_TRUE(evaluateSelection(cloud, {{-1, -1, filter, nullptr, false}}, kept, problem)) << problem;
  return kept.count();
}

TEST(SurfaceFilter, CountsAsABruteForceCountDoes) {
  const auto cloud = Testing::openTestData("ahn3_crop.las");
  if (!cloud) GTEST_SKIP() << "There are no real clouds in " << QUINDLE_TEST_DATA << ".";
  std::string problem;
  const auto surface = SurfaceCache().load(QUINDLE_TEST_DATA "/ahn3_ground.obj", problem);
  ASSERT_TRUE(surface) << problem;
  const auto kept = [&](bool above, double margin) {
    return countKept(*cloud, makeSurfaceFilter(*cloud, surface, above, margin, problem));
  };
  EXPECT_EQ(kept(true, 0), 17192U);
  EXPECT_EQ(kept(false, 0), 4443U);
  EXPECT_EQ(kept(true, -1e9), 17192U + 4443U + 744U);
  EXPECT_EQ(kept(true, 1e9), 0U);
}

TEST(ExpressionFilter, SeesTheCoordinatesOfTheCloud) {
  const auto cloud = Testing::makeTestCloud({{{0, 0, 449}}, {{0, 0, 450}}, {{0, 0, -7}}});
  std::string problem;
  EXPECT_EQ(countKept(*cloud, makeExpressionFilter(*cloud, "z < 4.5 and Z == z", problem)), 2U);
  EXPECT_EQ(makeExpressionFilter(*cloud, "Nowhere", problem), nullptr);
}

} // namespace
} // namespace Zamt::Host
