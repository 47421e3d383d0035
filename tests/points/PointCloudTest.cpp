#include "host/points/PointCloud.h"

#include <filesystem>
#include <gtest/gtest.h>

namespace Zamt::Host {
namespace {

const std::string dataFolder = QUINDLE_TEST_DATA;

std::shared_ptr<PointCloud> openData(const std::string& name) {
  std::string error;
  auto cloud = PointCloud::open(dataFolder + "/" + name, error);
  EXPECT_TRUE(cloud) << error;
  return cloud;
}

class PointCloudTest : public ::testing::Test {
protected:
  void SetUp() override {
    if (!std::filesystem::exists(dataFolder)) GTEST_SKIP() << "No test clouds at " << dataFolder << ".";
  }
};

TEST_F(PointCloudTest, ReadsWhatItsOriginSaysOfEachFile) {
  struct Case {
    const char* file;
    unsigned minor, format;
    std::uint64_t points;
    std::vector<unsigned> classes; // those that occur; not looked at when empty
  };
  const Case cases[] = {
      {"autzen-thin.las", 2, 3, 10653, {1, 2}},
      {"sample_c.las", 2, 3, 14408, {2, 3, 4, 5, 6, 11, 14, 31}},
      {"4_6_crop.las", 2, 3, 23875, {1, 2}},
      {"extrabytes.las", 4, 3, 1065, {}},
      {"autzen-bmx-2023_pf7.las", 4, 7, 687, {}},
      {"warsaw_small.las", 2, 3, 3000, {0, 2, 3, 4, 5}},
      {"mvk-thin.las", 2, 1, 6280, {1, 2, 4, 5, 9, 12}},
      {"epsg_4326_pf0.las", 2, 0, 5380, {}},
      {"wkt_and_geotiff_pf6.las", 4, 6, 25408, {2, 3, 4, 5, 6, 7}},
      {"evlr_pf6.las", 4, 6, 1000, {}},
      {"vegetation_1_3.las", 3, 1, 10683, {}},
      {"waveform_pf4.las", 3, 4, 999, {}},
      {"ahn3_crop.las", 2, 1, 29670, {}},
      {"bad_vlr_count.las", 2, 3, 10, {}},
      {"lots_of_vlr.las", 1, 1, 1, {}},
      {"no-points.las", 2, 3, 0, {}},
      {"gps-time-nan.las", 2, 1, 1, {}},
      {"perm_1.0_0.las", 0, 0, 1, {}},
      {"perm_1.1_1.las", 1, 1, 1, {}},
      {"perm_1.2_2.las", 2, 2, 1, {}},
      {"perm_1.2_3.las", 2, 3, 1, {}},
  };
  for (const Case& expected : cases) {
    SCOPED_TRACE(expected.file);
    const auto cloud = openData(expected.file);
    if (!cloud) continue;
    EXPECT_EQ(cloud->versionMinor(), expected.minor);
    EXPECT_EQ(cloud->pointFormat(), expected.format);
    EXPECT_EQ(cloud->size(), expected.points);
    const auto counts = cloud->countClasses();
    std::vector<unsigned> classes;
    for (unsigned number = 0; number < counts.size(); ++number)
      if (counts[number] != 0) classes.push_back(number);
    if (!expected.classes.empty()) {
      EXPECT_EQ(classes, expected.classes);
    }
  }
}

} // namespace
} // namespace Zamt::Host
