#include "tests/cli/quindle.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <map>
#include <memory>
#include <sstream>
#include <thread>

using namespace Zamt::Testing;

namespace {

/// One sample scene for the whole suite; tests write beside it under names of their own.
class Run : public testing::Test {
protected:
  static void SetUpTestSuite() {
    directory = std::make_unique<TemporaryDirectory>();
    ASSERT_EQ(quindle({"sample", cloud(), "--points", "40000"}).exitCode, 0);
  }
  static void TearDownTestSuite() { directory.reset(); }

  static std::string path(const std::string& name) { return directory->path(name); }
  static std::string cloud() { return path("lake.las"); }
  static std::string water() { return "water=" + path("lake-water.ply"); }

  static inline std::unique_ptr<TemporaryDirectory> directory;
};

/// A Quindle that works for seconds on any machine.
std::string slowQuindle() {
  std::string dear = "neighbours(100, 20000, 30000)";
  for (int radius = 101; radius < 140; ++radius)
    dear += " or neighbours(" + std::to_string(radius) + ", 20000, 30000)";
  return "quindle \"Slow\" { param cloud : Grid = active on run { select " + dear +
         " classify into \"Water\" } }";
}

TEST_F(Run, ACloudCutShortByAnotherProgramEndsInASentence) {
  const std::string script = directory->write("slow.quindle", slowQuindle());
  std::filesystem::copy_file(cloud(), path("shortened.las"));
  const std::set<std::string> before = directory->names();
  std::thread other([cut = path("shortened.las")] {
    std::this_thread::sleep_for(std::chrono::milliseconds(300));
    std::filesystem::resize_file(cut, 1000);
  });
  const CommandResult result = quindle({"run", script, path("shortened.las"), "--in-place"});
  other.join();
  EXPECT_EQ(result.exitCode, 1);
  // On a machine that is busy it may be cut before it is opened.
  EXPECT_THAT(
      result.err,
      testing::AnyOf("error: A cloud became shorter while it was read, so nothing was written. Run this "
                     "again when no other program writes to the cloud.\n",
                     testing::HasSubstr("\" is cut off")));
  EXPECT_EQ(directory->names(), before);
}

TEST_F(Run, AnInterruptInTheMiddleLeavesTheOldFileAndSaysOneSentence) {
  const std::string script = directory->write("slow.quindle", slowQuindle());
  std::filesystem::copy_file(cloud(), path("kept.las"));
  const std::set<std::string> before = directory->names();
  const CommandResult result = quindle({"run", script, path("kept.las"), "--in-place"},
                                       {.interruptAfter = std::chrono::milliseconds(300)});
  EXPECT_EQ(result.exitCode, 1);
  EXPECT_EQ(result.err, path("kept.las") + ": error: Interrupted, nothing was written.\n");
  EXPECT_TRUE(readFile(path("kept.las")) == readFile(cloud()));
  EXPECT_EQ(directory->names(), before);
}

TEST_F(Run, EveryConditionOfTheManualRunsAsItIsWrittenThere) {
  const std::map<std::string, std::string> calls{
      {"class", "class(\"Ground, Building\")"},
      {"field", "field(\"Amplitude\", 10, 200)"},
      {"below", "below(water, 0.2)"},
      {"above", "above(surface: water, margin: 0.2)"},
      {"vertical", "vertical()"},
      {"neighbours", "neighbours(2)"},
      {"inside", "inside(\"512000 5403000 0 512100 5403100 999\")"},
      {"within", "within(\"512100, 5403080, 415\", 60)"},
      {"expr", "expr(\"Amplitude > 120 and z < 420\")"}};
  std::istringstream manual(quindle({"reference", "conditions"}).out);
  std::size_t met = 0;
  for (std::string line; std::getline(manual, line);) {
    const std::size_t bracket = line.find('(');
    if (!line.starts_with("  ") || bracket == std::string::npos) continue;
    std::string step = line;
    if (!line.starts_with("  select ")) {
      const auto call = calls.find(line.substr(2, bracket - 2));
      ASSERT_NE(call, calls.end()) << line;
      step = "select " + call->second;
      ++met;
    }
    const std::string script =
        directory->write("manual-line.quindle",
                         "quindle \"Line\" { param cloud : Grid = active param water : Surface on run { " +
                             step + " classify into \"Rail\" } }");
    const CommandResult result = quindle({"preview", script, cloud(), "--set", water(), "--json"});
    ASSERT_EQ(result.exitCode, 0) << step << result.out;
    EXPECT_GT(nlohmann::json::parse(result.out)["clouds"][0]["changes"][0]["modified"], 0) << step;
  }
  EXPECT_EQ(met, calls.size());
}

} // namespace
