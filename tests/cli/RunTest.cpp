#include "tests/cli/quindle.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <map>
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

/// What stands in the directory of the suite.
std::set<std::string> namesIn(const std::string& directory) {
  std::set<std::string> names;
  for (const auto& entry : std::filesystem::directory_iterator(directory))
    names.insert(entry.path().filename());
  return names;
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
  const std::string text = directory->write("text.las", "This is no cloud.");
  const auto quindleOf = [](const std::string& condition, const std::string& into) {
    return "quindle \"Q\" { param cloud : Grid = active on run { select " + condition + " classify into " +
           into + " } }";
  };
  const auto script = [&](const std::string& name, const std::string& condition,
                          const std::string& into = "\"Water\"") {
    return directory->write(name + ".quindle", quindleOf(condition, into));
  };
  const std::string fine = script("fine", "class(\"Ground\")");
  const std::string lead = "Nothing was selected, and not because nothing matched: ";
  struct Case {
    std::vector<std::string> words;
    std::string said;
  };
  const Case cases[] = {
      {{script("field", "Amplitud > 3"), cloud(), "-o", path("o.las")},
       lead + "There is no field called \"Amplitud\"; this cloud has X, Y, Z"},
      {{script("surface", "above(\"none.ply\")"), cloud(), "-o", path("o.las")},
       lead + "The surface \"none.ply\" can't be read"},
      {{script("expr", "expr(\"z <\")"), cloud(), "-o", path("o.las")},
       lead + "The expression \"z <\" can't be used"},
      {{script("class", "class(\"Gruond\")"), cloud(), "-o", path("o.las")},
       "This data has no class called \"Gruond\", so selecting it can never match anything. It has: "},
      {{script("number", "class(\"Ground\")", "\"Far\" as 256"), cloud(), "-o", path("o.las")},
       lead + "Class 256 does not fit: point format 6 holds classes up to 255."},
      {{sourceExamples + "underwater-ground.quindle", cloud(), "-o", path("o.las")},
       "No value for the parameter \"water\", and it has no default."},
      {{fine, cloud(), "--set", "q=1", "-o", path("o.las")},
       "\"Q\" has no parameter called \"q\". It takes: cloud."},
      {{fine, cut, "-o", path("o.las")}, "\"" + cut + "\""},
      {{fine, text, "-o", path("o.las")}, "\"" + text + "\""},
      {{fine, path("none.las"), "-o", path("o.las")}, "\"" + path("none.las") + "\""},
      {{fine, cloud(), "-o", path("none/o.las")}, "The directory \"" + path("none") + "\" does not exist."},
      {{path("none.quindle"), cloud(), "-o", path("o.las")}, ""},
  };
  const std::set<std::string> before = namesIn(path(""));
  for (const Case& one : cases) {
    std::vector<std::string> words{"run"};
    words.insert(words.end(), one.words.begin(), one.words.end());
    const CommandResult result = quindle(words);
    EXPECT_EQ(result.exitCode, 1) << result.err;
    const std::string sentence = onlyError(result.err);
    EXPECT_NE(sentence.find(one.said), std::string::npos) << sentence;
    EXPECT_TRUE(sentence.ends_with('.')) << sentence;
    EXPECT_EQ(namesIn(path("")), before) << sentence;
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
  std::filesystem::copy_file(cloud(), path("shortened.las"));
  const std::set<std::string> before = namesIn(path(""));
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
  EXPECT_EQ(namesIn(path("")), before);
}

TEST_F(Run, AnInterruptInTheMiddleLeavesTheOldFileAndSaysOneSentence) {
  const std::string script = directory->write("slow.quindle", slowQuindle());
  std::filesystem::copy_file(cloud(), path("kept.las"));
  const std::set<std::string> before = namesIn(path(""));
  const CommandResult result = quindle({"run", script, path("kept.las"), "--in-place"},
                                       {.interruptAfter = std::chrono::milliseconds(300)});
  EXPECT_EQ(result.exitCode, 1);
  EXPECT_EQ(result.err, path("kept.las") + ": error: Interrupted, nothing was written.\n");
  EXPECT_TRUE(readFile(path("kept.las")) == readFile(cloud()));
  EXPECT_EQ(namesIn(path("")), before);
}

TEST_F(Run, WritingOverTheInputIsSafeAndClassesCanBeLeftAlone) {
  std::filesystem::copy_file(cloud(), path("same.las"));
  const std::string script =
      directory->write("all.quindle", "quindle \"All\" { param cloud : Grid = active on run { "
                                      "classify into \"Rail\" report \"{selected}\" } }");
  const auto run = [&](std::vector<std::string> more) {
    more.insert(more.begin(), {"run", script, path("same.las"), "-o", path("same.las")});
    const CommandResult result = quindle(more);
    EXPECT_EQ(result.exitCode, 0) << result.err;
    return result.out.substr(0, result.out.find('\n', result.out.find('\n') + 1));
  };
  const nlohmann::json info = nlohmann::json::parse(quindle({"info", "--json", cloud()}).out, nullptr, false);
  std::uint64_t buildings = 0;
  for (const nlohmann::json& entry : info["clouds"][0]["classes"])
    if (entry["number"] == 6) buildings = entry["points"];
  EXPECT_EQ(run({"--classes", "Building"}), path("same.las") + "\n  " + std::to_string(buildings));
  EXPECT_EQ(run({}), path("same.las") + "\n  " + std::to_string(40000 - buildings));
  EXPECT_EQ(run({}), path("same.las") + "\n  0");
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

TEST_F(Run, AConditionWithARegionGivenAsTextRuns) {
  const std::string script = directory->write(
      "manual.quindle",
      "quindle \"Manual\" { param cloud : Grid = active param tile : Region on run { select "
      "class(\"Ground\") and "
      "(neighbours(0.5) < 3 or inside(tile)) and not (Amplitude > 120) classify into \"Rail\" } }");
  const CommandResult result =
      quindle({"preview", script, cloud(), "--json", "--set", "tile=512000 5403000 400 512100 5403100 500"});
  ASSERT_EQ(result.exitCode, 0) << result.err;
  const nlohmann::json json = nlohmann::json::parse(result.out, nullptr, false);
  EXPECT_GT(json["clouds"][0]["changes"][0]["modified"], 0);
}

} // namespace
