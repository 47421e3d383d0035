#include "tests/cli/quindle.h"

#include <gtest/gtest.h>
#include <map>
#include <nlohmann/json.hpp>

using namespace Zamt::Testing;

namespace {

TEST(Info, CountsWhatARealCloudHolds) {
  const std::string cloud = QUINDLE_TEST_DATA "/mvk-thin.las";
  if (!std::filesystem::exists(cloud)) GTEST_SKIP() << "The folder with the real clouds is absent.";
  const CommandResult result = quindle({"info", "--json", cloud});
  ASSERT_EQ(result.exitCode, 0);
  const nlohmann::json info = nlohmann::json::parse(result.out, nullptr, false)["clouds"][0];
  EXPECT_EQ(info["version"], "1.2");
  EXPECT_EQ(info["pointFormat"], 1);
  std::map<int, int> points;
  for (const nlohmann::json& entry : info["classes"]) points[entry["number"]] = entry["points"];
  int total = 0;
  for (const int number : {1, 2, 4, 5, 9, 12}) total += points[number];
  EXPECT_EQ(points.size(), 6U);
  EXPECT_EQ(total, 6280);
}

TEST(Info, GoesOnBehindAFileThatIsNoCloud) {
  const TemporaryDirectory directory;
  directory.write("no.las", "no cloud at all");
  ASSERT_EQ(quindle({"sample", directory.path("a.las"), "--points", "10"}).exitCode, 0);
  const CommandResult result = quindle({"info", "no.las", "a.las"}, {.directory = directory.path()});
  EXPECT_EQ(result.exitCode, 1);
  EXPECT_EQ(result.err.rfind("no.las: error: ", 0), 0U) << result.err;
  EXPECT_EQ(result.out.rfind("a.las: LAS 1.4, point format 6, 10 points\n", 0), 0U) << result.out;
}

} // namespace
