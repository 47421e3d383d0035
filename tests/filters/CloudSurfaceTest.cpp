#include "host/filters/CloudSurface.h"

#include "host/surfaces/SurfaceText.h"
#include "tests/filters/FilterClouds.h"
#include "tests/support/readCloud.h"

#include <algorithm>
#include <cmath>

namespace Zamt::Host {
namespace {

using Testing::goOn;

/// Ground on a slope that rises by half a step in each step of x, with a point of another class beside each.
std::shared_ptr<PointCloud> slope() {
  std::vector<Testing::TestPoint> points;
  for (std::int32_t i = 0; i < 400; ++i) {
    const std::int32_t x = i % 20 * 100;
    const std::int32_t y = i / 20 * 100 + (i * 37) % 50;
    points.push_back({{x, y, x / 2}, 0, 2, {}});
    points.push_back({{x + 30, y, x / 2 - 40}, 0, 7, {}});
  }
  return Testing::makeTestCloud(points);
}

TEST(CloudSurface, ReachesExactlyThroughThePointsOfItsClasses) {
  const auto cloud = slope();
  std::string problem;
  const std::int64_t ground[] = {2};
  const auto surface = makeCloudSurface(*cloud, ground, INFINITY, goOn, problem);
  ASSERT_NE(surface, nullptr) << problem;
  const auto x = Testing::readField(*cloud, "X");
  const auto y = Testing::readField(*cloud, "Y");
  const auto z = Testing::readField(*cloud, "Z");
  for (std::size_t i = 0; i < x.size(); i += 2)
    EXPECT_NEAR(surface->verticalDistance(x[i], y[i], z[i]), 0, 1e-9);
  for (std::size_t i = 1; i < x.size(); i += 2) {
    const double distance = surface->verticalDistance(x[i], y[i], z[i]);
    EXPECT_TRUE(std::isnan(distance) || std::abs(distance + 0.55) < 1e-9) << distance;
  }
}

TEST(CloudSurface, LeavesLongTrianglesOutAndRefusesWhatSpansNothing) {
  const auto cloud = slope();
  std::string problem;
  const std::int64_t ground[] = {2};
  const std::int64_t none[] = {3};
  const auto whole = makeCloudSurface(*cloud, ground, INFINITY, goOn, problem);
  const auto part = makeCloudSurface(*cloud, ground, 1.2, goOn, problem);
  ASSERT_TRUE(whole && part);
  EXPECT_LT(part->size(), whole->size());
  EXPECT_EQ(makeCloudSurface(*cloud, none, INFINITY, goOn, problem), nullptr);
  EXPECT_NE(problem.find("span no surface"), std::string::npos);
}

TEST(SurfaceText, IsAFileThatExistsOrSaysWhatElseItIs) {
  struct Case {
    const char* text;
    const char* meaning; ///< The kind and what it needs, or the end of the sentence that refuses it.
  };
  const Case cases[] = {
      {"dem.ply", "file dem.ply"},
      {"class:Ground", "classes Ground;inf"},
      {"class: Ground, 9 ,?longest=2.5", "classes Ground;9;2.5"},
      {"level:-405.20", "level -405.2"},
      {"class:", "as in \"class:Ground\"."},
      {"class:2?longest=0", "as in \"class:Ground?longest=20\"."},
      {"class:2?near", "as in \"class:Ground?longest=20\"."},
      {"level:high", "as in \"level:405.2\"."},
      {"level:1e999", "as in \"level:405.2\"."},
  };
  for (const auto& [text, meaning] : cases) {
    SurfaceText surface;
    std::string found;
    if (parseSurfaceText(text, surface, found)) {
      std::ostringstream said;
      if (surface.kind == SurfaceText::Kind::File) said << "file " << surface.path;
      if (surface.kind == SurfaceText::Kind::Level) said << "level " << surface.level;
      if (surface.kind == SurfaceText::Kind::Classes) {
        said << "classes ";
        for (const std::string& word : surface.classes) said << word << ';';
        said << surface.longest;
      }
      found = said.str();
    }
    EXPECT_TRUE(found.ends_with(meaning)) << text << ": " << found;
  }
  const Testing::TemporaryDirectory here;
  const std::filesystem::path before = std::filesystem::current_path();
  std::filesystem::current_path(here.path("."));
  std::ofstream("level:3") << "a file";
  SurfaceText surface;
  std::string problem;
  EXPECT_TRUE(parseSurfaceText("level:3", surface, problem)) << problem;
  std::filesystem::current_path(before);
  EXPECT_EQ(surface.kind, SurfaceText::Kind::File);
}

} // namespace
} // namespace Zamt::Host
