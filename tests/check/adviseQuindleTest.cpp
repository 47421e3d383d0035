#include "quindle/check/adviseQuindle.h"

#include "quindle/Quindle.h"
#include "tests/support/RecordingScene.h"
#include "tests/support/goldenCases.h"
#include "tests/support/parsed.h"
#include "tests/support/smallStack.h"

#include <gmock/gmock.h>

#include <filesystem>
#include <set>

namespace Zamt {
namespace {

using Testing::onSmallStack;
using Testing::parsed;
using Testing::parsedRun;
using Testing::repeated;

const std::string usualHead = "param cloud : Grid = active \"c\" param margin : Number = 3 \"m\" "
                              "param low : Number = 0 \"l\" param mode : Text = \"fast\" \"m\" "
                              "on load { report \"{cloud}\" }";

std::string adviceOn(const QuindleDocument& doc) {
  Diag diag;
  adviseQuindle(doc, diag);
  EXPECT_EQ(diag.errorCount, 0U);
  return diag.format();
}

TEST(AdviseQuindle, GivesTheAdviceOfTheGoldenDocument) {
  Testing::expectCases("check/golden/advice.md",
                       [](const std::string& text) { return adviceOn(parsed(text)); });
}

/// What a run or a compilation says in a scene that refuses nothing.
std::vector<std::string> refusalsOf(const QuindleDocument& doc) {
  Testing::RecordingScene scene;
  std::string labels;
  std::int32_t number = 0;
  Diag diag;
  planClassLabels("", "Ground", 2, {}, {}, labels, number, diag);
  diag.clear();
  scene.presets["Edit/MaskedLabels"]["labels"] = labels;
  QuindleRuntime runtime(scene);
  runtime.resolver = [](const std::string&, QuindleDocument& other, std::string&) {
    other = parsed("quindle \"Other\" { param a : Number on run { } }");
    return true;
  };
  QuindleRunResult result;
  EXPECT_FALSE(runtime.run(doc, {{"cloud", "Cloud"}}, false, result, diag));
  std::vector<std::string> messages;
  for (const Diag::Entry& entry : diag.entries)
    if (entry.severity == Diag::Severity::Error) messages.push_back(entry.message);
  return messages;
}

std::vector<std::string> adviceMessages(const QuindleDocument& doc) {
  Diag diag;
  adviseQuindle(doc, diag);
  std::vector<std::string> messages;
  for (const Diag::Entry& entry : diag.entries) messages.push_back(entry.message);
  return messages;
}

TEST(AdviseQuindle, SaysWhatIsRefusedInAnySceneInTheSameWords) {
  const char* const refused[] = {
      "for each a in b { }",
      "set a.b = margin set a = 1 connect a <- b call a",
      "select Intensity > limit and class(Ground) and neighbours(class(\"A\")) <= 3 and inside(tile)",
      "let limit = 3 select Intensity > limit",
      "select frob(1) and Intensity != 3 and below(margin: 1) or Intensity",
      "select Z > 1 classify into margin classify into \"\"",
      "select class(\"5, Ground\") classify into \"Ground\"",
      "select class(\"2\") classify into \"Ground\" as 2",
      "if class(\"Ground\") { report \"\" }",
      "let a = b",
      "run \"Other\"(a: b)",
  };
  for (const char* const steps : refused) {
    const QuindleDocument doc = parsedRun(steps, usualHead);
    const std::vector<std::string> advice = adviceMessages(doc);
    for (const std::string& message : refusalsOf(doc))
      EXPECT_THAT(advice, testing::Contains(message)) << steps;
  }
  for (const char* const text : {"quindle \"a\" { on load { report \"\" } }",
                                 "quindle \"a\" { on run { select Z > 1 classify into \"A\" } }"}) {
    const QuindleDocument doc = parsed(text);
    EXPECT_THAT(adviceMessages(doc), testing::IsSupersetOf(refusalsOf(doc))) << text;
  }
}

TEST(AdviseQuindle, RepeatsNothingThatWasSaid) {
  const QuindleDocument doc =
      parsedRun("select frob(1)\nclassify into \"A\" as 300\nrun \"Test\"()", usualHead);
  Diag diag;
  checkQuindle(doc, diag);
  planQuindle(doc, diag);
  adviseQuindle(doc, diag);
  std::multiset<std::string> said;
  for (const Diag::Entry& entry : diag.entries) said.insert(std::to_string(entry.line) + ' ' + entry.message);
  for (const std::string& saying : said) EXPECT_EQ(said.count(saying), 1U) << saying;
}

TEST(AdviseQuindle, TakesLongDocumentsInLinearTime) {
  constexpr std::size_t many = 100'000;
  constexpr std::size_t levels = 300;
  const std::string around = "if low {\nselect Z > 1\n";
  const std::string documents[] = {
      repeated(around, many) + repeated("}", many),
      repeated("select A > 1 classify into \"A\"\n", many),
      "select expr(\"" + repeated("(", many) + "\") report \"" + repeated("{a}", many) + "\"",
      repeated("if low {\n" + repeated("report \"\"\n", levels), levels) + repeated("}", levels),
  };
  onSmallStack([&] {
    for (const std::string& steps : documents) {
      Diag diag;
      adviseQuindle(parsedRun(steps, usualHead), diag);
      EXPECT_LE(diag.entries.size(), 2 * many + 2);
    }
  });
}

/// Quindles in the blocks of a document, with the name behind the "```quindle" of each.
std::vector<std::pair<std::string, std::string>> quindlesIn(const std::string& document) {
  std::vector<std::pair<std::string, std::string>> blocks;
  const std::string fence = "```quindle ";
  for (std::size_t at = 0; (at = document.find(fence, at)) != std::string::npos;) {
    at += fence.size();
    const std::size_t start = document.find('\n', at) + 1;
    blocks.emplace_back(document.substr(at, start - 1 - at),
                        document.substr(start, document.find("```", start) - start));
  }
  return blocks;
}

TEST(AdviseQuindle, FindsNothingInTheExamplesAndTheTutorial) {
  const std::string root = QUINDLE_SOURCE_DIR;
  std::vector<std::pair<std::string, std::string>> quindles =
      quindlesIn(Testing::readFile(root + "/docs/tutorial.md"));
  EXPECT_GE(quindles.size(), 10U);
  for (const char* const folder : {"/examples", "/examples/embedding/quindles"})
    for (const auto& entry : std::filesystem::directory_iterator(root + folder))
      if (entry.path().extension() == ".quindle")
        quindles.emplace_back(entry.path().filename().string(), Testing::readFile(entry.path()));
  for (const auto& [name, text] : quindles) {
    if (name == "broken.quindle") continue; // shows faults on purpose
    EXPECT_EQ(adviceOn(parsed(text, name)), "") << name;
  }
}

} // namespace
} // namespace Zamt
