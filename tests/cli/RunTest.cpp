#include "tests/cli/quindle.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <memory>
#include <set>
#include <sstream>
#include <thread>

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

  static std::uint64_t modified(const CommandResult& result) {
    EXPECT_EQ(result.exitCode, 0) << result.out << result.err;
    const nlohmann::json json = nlohmann::json::parse(result.out, nullptr, false);
    return result.exitCode == 0 ? json["clouds"][0]["changes"][0]["modified"].get<std::uint64_t>() : 0;
  }

  static inline std::unique_ptr<TemporaryDirectory> directory;
};

TEST_F(Run, EveryExampleFindsSomethingToDo) {
  for (const std::string example : {"underwater-ground", "over-water", "isolated-noise", "walls-to-building",
                                    "low-vegetation", "high-noise"}) {
    const bool needsWater = example.find("water") != std::string::npos;
    const std::uint64_t found = modified(quindle({"preview", sourceExamples + example + ".quindle", cloud(),
                                                  "--json", "--set", needsWater ? water() : "cloud=Cloud"}));
    EXPECT_GT(found, 0U) << example;
    EXPECT_LT(found, 20000U) << example;
  }
}

/// The one error among what was said; the test fails if there are more, or none.
std::string onlyError(const std::string& said) {
  const std::string mark = "error: ";
  const std::size_t at = said.find(mark);
  EXPECT_NE(at, std::string::npos) << said;
  if (at == std::string::npos) return {};
  EXPECT_EQ(said.find(mark, at + 1), std::string::npos) << said;
  return said.substr(at + mark.size(), said.find('\n', at) - at - mark.size());
}

TEST_F(Run, EveryFailureIsOneSentenceAndLeavesNoFileBehind) {
  const std::string lake = readFile(cloud());
  const std::string cut = directory->write("cut.las", lake.substr(0, lake.size() / 2));
  const auto script = [](const std::string& name, const std::string& steps) {
    return directory->write(name + ".quindle",
                            "quindle \"Q\" { param cloud : Grid = active on run { select " + steps + " } }");
  };
  const std::string fine = script("fine", "class(\"Ground\") classify into \"Water\"");
  const std::string lead = "Nothing was selected, and not because nothing matched: ";
  const std::string o = path("o.las");
  const std::pair<std::vector<std::string>, std::string> cases[] = {
      {{script("field", "Amplitud > 3 classify into \"Water\""), cloud(), "-o", o},
       lead + "There is no field called \"Amplitud\"; "},
      {{script("class", "class(\"Gruond\") classify into \"Water\""), cloud(), "-o", o},
       "This data has no class called \"Gruond\", so selecting it can never match anything. It has: "},
      {{script("number", "class(\"Ground\") classify into \"Far\" as 256"), cloud(), "-o", o},
       lead + "Class 256 does not fit: point format 6 holds classes up to 255."},
      {{sourceExamples + "underwater-ground.quindle", cloud(), "-o", o},
       "No value for the parameter \"water\", and it has no default."},
      {{fine, cut, "-o", o}, "\"" + cut + "\" is cut off"},
      {{fine, path("none.las"), "-o", o}, "\"" + path("none.las") + "\""},
      {{fine, cloud(), "-o", path("none/o.las")}, "The directory \"" + path("none") + "\" does not exist."},
      {{path("none.quindle"), cloud(), "-o", o}, ""},
  };
  const std::set<std::string> before = directory->names();
  for (auto [words, said] : cases) {
    words.insert(words.begin(), "run");
    const CommandResult result = quindle(words);
    EXPECT_EQ(result.exitCode, 1) << result.err;
    const std::string sentence = onlyError(result.err);
    EXPECT_NE(sentence.find(said), std::string::npos) << sentence;
    EXPECT_TRUE(sentence.ends_with('.')) << sentence;
    EXPECT_EQ(directory->names(), before) << sentence;
  }
}

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
  std::filesystem::copy_file(cloud(), path("cut.las"));
  const std::set<std::string> before = namesIn(path(""));
  std::thread other([cut = path("cut.las")] {
    std::this_thread::sleep_for(std::chrono::milliseconds(300));
    std::filesystem::resize_file(cut, 1000);
  });
  const CommandResult result = quindle({"run", script, path("cut.las"), "--in-place"});
  other.join();
  EXPECT_EQ(result.exitCode, 1);
  EXPECT_EQ(result.err,
            "error: A cloud became shorter while it was read, so nothing was written. Run this again when "
            "no other program writes to the cloud.\n");
  EXPECT_EQ(namesIn(path("")), before);
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

TEST_F(Run, WritingOverTheInputIsSafeAndChangesNothingMoreTheNextTime) {
  const std::string same = path("same.las");
  std::filesystem::copy_file(cloud(), same);
  const std::string script = sourceExamples + "low-vegetation.quindle";
  ASSERT_EQ(quindle({"run", script, same, "-o", same}).exitCode, 0);
  const std::string once = readFile(same);
  EXPECT_FALSE(once == readFile(cloud()));
  ASSERT_EQ(quindle({"run", script, same, "--in-place"}).exitCode, 0);
  EXPECT_TRUE(readFile(same) == once);
}

TEST_F(Run, EverySampleStepOfTheManualRunsAsItIsWrittenThere) {
  std::istringstream manual(quindle({"reference", "conditions"}).out);
  std::size_t met = 0;
  for (std::string line; std::getline(manual, line);) {
    if (!line.starts_with("  select ")) continue;
    const std::string script =
        directory->write("manual-line.quindle",
                         "quindle \"Line\" { param cloud : Grid = active param water : Surface on run { " +
                             line + " classify into \"Rail\" } }");
    EXPECT_GT(modified(quindle({"preview", script, cloud(), "--set", water(), "--json"})), 0U) << line;
    ++met;
  }
  EXPECT_GT(met, 0U);
}

} // namespace
