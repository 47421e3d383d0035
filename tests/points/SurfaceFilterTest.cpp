#include "host/points/SurfaceFilter.h"
#include "host/points/ExpressionFilter.h"
#include "host/points/SurfaceFile.h"

#include <gtest/gtest.h>

#include <numeric>

namespace Zamt::Host {
namespace {

/// Counts the points that a filter keeps, block by block, and holds its coverage to its answers.
std::uint64_t countKept(const PointCloud& cloud, const PointFilter& filter) {
  std::uint64_t kept = 0;
  for (std::uint64_t first = 0; first < cloud.size(); first += blockPoints) {
    std::vector<std::uint32_t> indices(std::min<std::uint64_t>(blockPoints, cloud.size() - first));
    std::iota(indices.begin(), indices.end(), 0U);
    std::vector<std::uint8_t> holds(indices.size(), 2);
    filter.test(first, indices, holds);
    const auto here = std::accumulate(holds.begin(), holds.end(), std::uint64_t{0});
    EXPECT_TRUE(filter.coverage(first) != PointFilter::Coverage::None || here == 0);
    kept += here;
  }
  return kept;
}

class RealGround : public testing::Test {
protected:
  void SetUp() override {
    const std::string folder = QUINDLE_TEST_DATA;
    std::string problem;
    cloud = PointCloud::open(folder + "/ahn3_crop.las", problem);
    if (!cloud) GTEST_SKIP() << problem;
    surface = SurfaceCache().load(folder + "/ahn3_ground.obj", problem);
    ASSERT_TRUE(surface) << problem;
  }

  std::uint64_t kept(bool above, double margin) const {
    std::string problem;
    return countKept(*cloud, *makeSurfaceFilter(*cloud, surface, above, margin, problem));
  }

  std::shared_ptr<PointCloud> cloud;
  std::shared_ptr<const Surface> surface;
};

TEST_F(RealGround, CountsAsABruteForceCountDoes) {
  EXPECT_EQ(kept(true, 0), 17192U);
  EXPECT_EQ(kept(false, 0), 4443U);
  EXPECT_EQ(kept(true, -1e9), 17192U + 4443U + 744U);
  EXPECT_EQ(kept(true, 1e9), 0U);
}

TEST_F(RealGround, AnExpressionSeesTheCoordinatesOfTheCloud) {
  std::string problem;
  std::uint64_t low = 0;
  for (std::uint64_t i = 0; i < cloud->size(); ++i) low += cloud->position(i)[2] < 4.5 ? 1 : 0;
  const auto filter = makeExpressionFilter(*cloud, "z < 4.5 and Z == z", problem);
  ASSERT_TRUE(filter) << problem;
  EXPECT_EQ(countKept(*cloud, *filter), low);
  EXPECT_EQ(makeExpressionFilter(*cloud, "Nowhere", problem), nullptr);
}

} // namespace
} // namespace Zamt::Host
