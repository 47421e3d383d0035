#include "tests/cli/quindle.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

using namespace Zamt::Testing;
using testing::HasSubstr;
using testing::StartsWith;

namespace {

using Words = std::vector<std::string>;

struct Found {
  Words words;
  std::string begins; ///< How the results begin.
  std::string holds;
  std::string err{};
};

TEST(Lookup, ShowsWhatIsAskedFor) {
  const TemporaryDirectory directory;
  const std::string cloud = directory.path("a.las");
  ASSERT_EQ(quindle({"sample", cloud, "--points", "10"}).exitCode, 0);
  const std::string none =
      "note: No object of this scene has an action. Objects that a Quindle creates may have some.\n";
  const std::vector<Found> cases{
      {{"conditions", "within"}, "within - ", "\nBuilds: Selection/BrushFilterBySphere\n"},
      {{"reference"}, "== What a Quindle is  (what)\n\n", "\n\n== Comments  (comments)\n\n"},
      {{"reference", "--grammar"}, "  quindle \"<name>\" {\n", "on run {"},
      {{"registry"}, "== Compute  (3)\n\nCompute/BrushFromBox  [mature]  -  ", "\n\n== Edit  (1)\n\nEdit/"},
      {{"registry", "Lattix", "--limit", "1"},
       "== Lattix  (2)\n\nLattix/PointCloud  [mature]",
       "\n... and 1 more in this category, not shown.\n"},
      {{"registry", "--level", "2001"}, "== Quindle conditions  (9)\n\nclass  -  ", "\nexpr  -  "},
      {{"registry", "below"}, "below - Keep the points under", "\nCost: moderate"},
      {{"registry", "Edit/MaskedLabels", "--level", "mature"},
       "Edit/MaskedLabels  [mature]\nCategory: Edit\n",
       "\n    create <name> = \"Edit/MaskedLabels\"\n"},
      {{"registry", "--cloud", cloud},
       "== Actions in this scene  (1)\n\nPicture.save  -  ",
       "== Selection  (9)"},
      {{"registry", "Actions in this scene"}, "", "", none},
  };
  for (const Found& one : cases) {
    SCOPED_TRACE(testing::PrintToString(one.words));
    const CommandResult result = quindle(one.words);
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_THAT(result.out, StartsWith(one.begins));
    EXPECT_THAT(result.out, HasSubstr(one.holds));
    EXPECT_EQ(result.err, one.err);
  }
}

TEST(Lookup, OffersWhatIsNearWhenAWordIsUnknown) {
  const std::vector<std::pair<Words, std::string>> cases{
      {{"conditions", "Clas"},
       "There is no condition called \"Clas\". Did you mean \"class\"? \"quindle conditions\" without a name "
       "lists them all."},
      {{"reference", "setps"},
       "There is no section called \"setps\". Did you mean \"steps\"? The sections are: what, file, "
       "settings, "
       "params, triggers, steps, conditions, values, reports, comments, running, limits."},
      {{"registry", "maskedlabels"},
       "There is no category and no item called \"maskedlabels\". Did you mean \"Edit/MaskedLabels\"? "
       "\"quindle registry\" without a name lists them all."},
      {{"registry", "Lattix", "--level", "2001"},
       "There is no category and no item called \"Lattix\". \"quindle registry\" without a name lists them "
       "all."},
  };
  for (const auto& [words, sentence] : cases) {
    SCOPED_TRACE(testing::PrintToString(words));
    const CommandResult plain = quindle(words);
    EXPECT_EQ(plain.exitCode, 1);
    EXPECT_EQ(plain.out, "");
    EXPECT_EQ(plain.err, "error: " + sentence + "\n");
    Words forMachines = words;
    forMachines.emplace_back("--json");
    const CommandResult json = quindle(forMachines);
    EXPECT_EQ(json.exitCode, 1);
    EXPECT_EQ(nlohmann::json::parse(json.out, nullptr, false)["diagnostics"][0]["message"], sentence);
  }
}

TEST(Lookup, JsonHoldsTheSameWords) {
  const auto json = [](Words words) {
    words.emplace_back("--json");
    return nlohmann::json::parse(quindle(words).out, nullptr, false);
  };
  EXPECT_EQ(json({"conditions", "within"})["conditions"][0]["arguments"][1]["name"], "radius");
  EXPECT_EQ(json({"reference"})["sections"].size(), 12U);
  const nlohmann::json picture = json({"registry", "Display"})["items"][0];
  EXPECT_EQ(picture["completion"], "Display/Picture");
  EXPECT_EQ(picture["kind"], "creator");
  EXPECT_EQ(picture["maturity"], "mature");
  EXPECT_EQ(json({"registry", "--limit", "2", "--level", "2001"})["items"].size(), 2U);
}

/// Runs "reference comments" with its results going to a terminal, and gives what the pager then wrote.
std::string pagedBy(const std::string& pager, const TemporaryDirectory& directory) {
  const int terminal = ::posix_openpt(O_RDWR | O_NOCTTY);
  if (terminal < 0 || ::grantpt(terminal) != 0 || ::unlockpt(terminal) != 0) return "no terminal";
  ::setenv("PAGER", pager.c_str(), 1);
  const CommandResult result =
      quindle({"reference", "comments"}, {.directory = directory.path(), .outputFile = ::ptsname(terminal)});
  ::unsetenv("PAGER");
  std::array<char, 12> shown{};
  std::size_t filled = 0;
  // A terminal hands on in pieces; behind the last one, reading fails, since the other end is closed.
  while (filled < shown.size()) {
    const ssize_t got = ::read(terminal, shown.data() + filled, shown.size() - filled);
    if (got <= 0) break;
    filled += static_cast<std::size_t>(got);
  }
  ::close(terminal);
  EXPECT_EQ(result.exitCode, 0);
  return std::string(shown.data(), filled);
}

TEST(Lookup, TheManualIsPagedOnATerminalOnly) {
  const TemporaryDirectory directory;
  EXPECT_EQ(pagedBy("tee paged | head -c 4; echo .", directory), "Comm.\r\n");
  EXPECT_THAT(readFile(directory.path("paged")), StartsWith("Comments\n\n"));
  EXPECT_EQ(pagedBy("./no-such-pager", directory), "Comments\r\n\r\n");
  EXPECT_EQ(pagedBy("", directory), "Comments\r\n\r\n");
}

} // namespace
