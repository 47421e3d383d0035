#include "tests/cli/quindle.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <memory>

using namespace Zamt::Testing;

namespace {

const std::string sourceExamples = QUINDLE_SOURCE_DIR "/examples/";

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

  /// What `verb` changes with an example, from its JSON.
  static nlohmann::json changes(const std::string& verb, const std::string& example,
                                const std::vector<std::string>& more) {
    std::vector<std::string> words{verb, sourceExamples + example + ".quindle", cloud(), "--json"};
    words.insert(words.end(), more.begin(), more.end());
    const CommandResult result = quindle(words);
    EXPECT_EQ(result.exitCode, 0) << example << result.out << result.err;
    const nlohmann::json json = nlohmann::json::parse(result.out, nullptr, false);
    return result.exitCode == 0 ? json["clouds"][0]["changes"] : nlohmann::json();
  }

  static inline std::unique_ptr<TemporaryDirectory> directory;
};

TEST_F(Run, EveryExampleFindsSomethingToDo) {
  for (const auto& [example, needsWater] :
       std::vector<std::pair<std::string, bool>>{{"underwater-ground", true},
                                                 {"over-water", true},
                                                 {"isolated-noise", false},
                                                 {"walls-to-building", false},
                                                 {"low-vegetation", false},
                                                 {"high-noise", false}}) {
    const nlohmann::json found =
        changes("preview", example,
                needsWater ? std::vector<std::string>{"--set", water()} : std::vector<std::string>{});
    ASSERT_EQ(found.size(), 1U) << example;
    EXPECT_GT(found[0]["modified"], 0) << example;
    EXPECT_LT(found[0]["modified"], 20000) << example;
  }
}

TEST_F(Run, WritesWhatThePreviewPromised) {
  const std::string before = readFile(cloud());
  const nlohmann::json promised = changes("preview", "underwater-ground", {"--set", water()});
  const nlohmann::json done = changes("run", "underwater-ground", {"--set", water(), "-o", path("out.las")});
  EXPECT_EQ(done, promised);
  EXPECT_EQ(readFile(cloud()), before);
  const CommandResult result = quindle({"info", "--json", path("out.las")});
  const nlohmann::json info = nlohmann::json::parse(result.out, nullptr, false);
  std::uint64_t moved = 0;
  for (const nlohmann::json& entry : info["clouds"][0]["classes"])
    if (entry["number"] == 27) moved = entry["points"];
  EXPECT_EQ(moved, done[0]["modified"].get<std::uint64_t>());
}

TEST_F(Run, ASecondRunInPlaceChangesNothing) {
  std::filesystem::copy_file(cloud(), path("twice.las"));
  const std::vector<std::string> words{"run", sourceExamples + "low-vegetation.quindle", path("twice.las"),
                                       "--in-place"};
  ASSERT_EQ(quindle(words).exitCode, 0);
  const std::string once = readFile(path("twice.las"));
  EXPECT_NE(once, readFile(cloud()));
  ASSERT_EQ(quindle(words).exitCode, 0);
  EXPECT_EQ(readFile(path("twice.las")), once);
}

TEST_F(Run, KeepsToTheRegion) {
  const nlohmann::json everywhere =
      changes("preview", "restore-class", {"--region", "512000 5403000 512200 5403160"});
  const nlohmann::json east =
      changes("preview", "restore-class", {"--region", "512160 5403000 512200 5403160"});
  EXPECT_GT(everywhere[0]["modified"], east[0]["modified"]);
  EXPECT_GT(east[0]["modified"], 0);
}

TEST_F(Run, FailsWithoutWritingWhenAValueIsMissing) {
  const CommandResult result =
      quindle({"run", sourceExamples + "underwater-ground.quindle", cloud(), "-o", path("never.las")});
  EXPECT_EQ(result.exitCode, 1);
  EXPECT_NE(result.err.find("error: No value for the parameter \"water\", and it has no default.\n"),
            std::string::npos)
      << result.err;
  EXPECT_FALSE(std::filesystem::exists(path("never.las")));
}

} // namespace
