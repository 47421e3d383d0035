#include "tests/runtime/RuntimeTest.h"

namespace Zamt::Testing {
namespace {

using testing::ElementsAre;

class RunNestedTest : public RuntimeTest {
protected:
  std::map<std::string, QuindleDocument> library;

  RunNestedTest() {
    runtime.resolver = [this](const std::string& name, QuindleDocument& document, std::string&) {
      const auto found = library.find(name);
      if (found == library.end()) return false;
      document = found->second;
      return true;
    };
  }

  const QuindleDocument& add(const std::string& name, const std::string& steps,
                             const std::string& head = {}) {
    return library[name] = parsed("quindle \"" + name + "\" { " + head + " on run {\n" + steps + "\n} }",
                                  name + ".quindle");
  }

  /// Quindles Q0 to Q«last», each running the next.
  void addChain(int last) {
    for (int i = 0; i < last; ++i) add("Q" + std::to_string(i), "run \"Q" + std::to_string(i + 1) + "\"()");
    add("Q" + std::to_string(last), "report \"bottom\"");
  }
};

TEST_F(RunNestedTest, PutsReportsAndWorkWhereTheStepStands) {
  add("In", "call Robot.go\nreport \"in {n} {word} {flag} {r}\"",
      "param n : Number = 0 param word : Text param flag : Text param r : Region = brush param s : Text = "
      "pick");
  const QuindleDocument doc = parsedRun("report \"first\"\nlet a = 2.50\n"
                                        "run \"In\"(n: a, word: \"text\", flag: a > 2)\nreport \"last\"",
                                        "param r : Region = brush");
  EXPECT_TRUE(run(doc, {{"r", "MyBrush"}, {"word", "not this"}})) << diag.format();
  EXPECT_THAT(result.report, ElementsAre("first", "in 2.50 text true MyBrush", "last"));
  EXPECT_EQ(result.settled, 1);
  EXPECT_THAT(calls(), ElementsAre("fire Robot.go", "settle"));
  EXPECT_TRUE(preview(doc, {{"r", "MyBrush"}}));
  EXPECT_EQ(result.settled, 0);
}

TEST_F(RunNestedTest, SaysWhyANestedRunCannotBe) {
  add("None", "report \"x\"");
  add("Two", "report \"x\"", "param a : Number = 1 param b : Number = 2");
  add("Off", "report \"x\"", "enabled false");
  const std::pair<std::string, std::string> cases[] = {
      {"run \"None\"(1)",
       "Test: error: The arguments of a \"run\" step have to be named, as  run \"None\"(margin: 0.5)."},
      {"run \"None\"(c: nope)", "Test: error: \"None\" has no parameter called \"c\". It takes none at all."},
      {"run \"Two\"(c: nope)", "Test: error: \"Two\" has no parameter called \"c\". It takes a, b."},
      {"run \"Two\"(a: nope)", "test.quindle:2:14: error: \"nope\" has no value here. It is neither a "
                               "parameter of this Quindle nor set by an earlier \"let\"."},
      {"run \"Off\"()", "Off: warning: \"Off\" is switched off.\n"
                        "Test: note: This happened while \"Test\" was running \"Off\"."}};
  for (const auto& [step, said] : cases) {
    runtime.forget("Test");
    EXPECT_FALSE(run(parsedRun(step))) << step;
    EXPECT_EQ(diag.format(), said);
  }
}

TEST_F(RunNestedTest, KeepsTheLinesOfAFailedRunAndStops) {
  add("In", "report \"one\"\nreport \"two\"\ncall Robot.go\nreport \"three\"");
  scene.refused = {"fire Robot.go"};
  EXPECT_FALSE(run(parsedRun("run \"In\"()\nreport \"after\"")));
  EXPECT_THAT(result.report, ElementsAre("one", "two"));
  EXPECT_EQ(diag.format(), "scene: error: refused: fire Robot.go\n"
                           "Test: note: This happened while \"Test\" was running \"In\".");
}

TEST_F(RunNestedTest, RefusesToGoRoundInCircles) {
  const QuindleDocument first = add("B", "run \"C\"()");
  add("C", "run \"D\"()");
  add("D", "run \"C\"()");
  EXPECT_FALSE(run(first));
  EXPECT_EQ(diag.firstError(), "\"B\" runs \"C\" runs \"D\" runs \"C\" again, which would never stop.");
}

TEST_F(RunNestedTest, NestsSixteenDeepAndNoDeeper) {
  addChain(16);
  EXPECT_TRUE(run(library["Q0"])) << diag.format();
  EXPECT_THAT(result.report, ElementsAre("bottom"));
  addChain(17);
  runtime.forget("Q16");
  EXPECT_FALSE(run(library["Q0"]));
  EXPECT_EQ(diag.entries.at(0).format(), "Q16: error: Quindles are running one another more than 16 deep, "
                                         "starting at \"Q0\". Something is almost certainly wrong.");
  EXPECT_EQ(diag.entries.size(), 17U);
  EXPECT_EQ(diag.entries.back().format(), "Q0: note: This happened while \"Q0\" was running \"Q1\".");
}

TEST_F(RunNestedTest, WalksOnAfterANestedRunReplacedTheProgram) {
  add("Test", "report \"inner\"");
  library["Test"].revision = 7;
  const QuindleDocument doc =
      parsedRun("run \"Test\"()\nreport \"outer, and long enough to lie on the heap\"");
  EXPECT_TRUE(run(doc)) << diag.format();
  EXPECT_THAT(result.report, ElementsAre("inner", "outer, and long enough to lie on the heap"));
}

} // namespace
} // namespace Zamt::Testing
