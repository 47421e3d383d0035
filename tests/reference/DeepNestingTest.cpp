#include "quindle/Quindle.h"
#include "tests/support/RecordingScene.h"
#include "tests/support/smallStack.h"

#include <gmock/gmock.h>

namespace Zamt::Testing {
namespace {

using ::testing::SizeIs;

/// The stack holds less than three bytes a level, so that nothing which recurses gets through.
constexpr std::size_t levels = 50'000;

struct Nesting {
  const char* what;
  std::string before;
  std::string opening; ///< Repeated.
  std::string middle;
  std::string closing; ///< Repeated.
  std::size_t planned; ///< How many nodes its plan has; 0 if it selects nothing.
  bool runs = true;

  std::string text() const {
    return "quindle \"Deep\" { description \"d\" " + before + repeated(opening, levels) + middle +
           repeated(closing, levels) + "\nreport \"{a}\" } }";
  }
};

const std::string steps = "param n : Number = 1 \"h\" param a : Number = 5 \"h\" on run { let b = n == a\n";

const Nesting nestings[] = {
    {"parentheses", steps + "select ", "(", "vertical()", ")", 1},
    {"negations", steps + "select ", "not (", "vertical()", ")", 1},
    {"junctions on the right", steps + "select ", "vertical() and (class(\"1\") or (", "vertical()", "))",
     4 * levels + 1},
    {"junctions on the left", steps + "select ", "((", "vertical()", " and vertical()) or vertical())",
     4 * levels + 1},
    {"negated junctions, which turn into one another", steps + "select ", "not (vertical() and ",
     "vertical()", ")", 2 * levels + 1},
    {"a flat junction", steps + "select ", "vertical() and ", "vertical()", "", levels + 2},
    {"a junction of one kind nested", steps + "select ", "(vertical() or ", "vertical()", ")", levels + 2},
    {"negations in a let", steps + "let c = ", "not (", "n", ")", 0},
    {"comparisons on the left", steps + "let c = ", "(", "n == n", ") == true", 0},
    {"comparisons on the right", steps + "let c = ", "true == (", "n == n", ")", 0},
    {"blocks", steps, "if n { ", "report \"bottom\"", "}", 0},
    {"blocks of else", steps, "if not n { } else { ", "report \"bottom\"", "}", 0},
    {"loops", steps, "for each i in n { ", "report \"bottom\"", "}", 0, false}};

void takesAllPasses(const Nesting& nesting) {
  QuindleDocument read;
  Diag diag;
  EXPECT_TRUE(diagnoseQuindle(nesting.text(), "f", read, diag)) << diag.firstError();
  const QuindleDocument document = read;
  read = {};
  EXPECT_NE(explainQuindle(document, {}), "");
  Diag advice;
  adviseQuindle(document, advice);
  EXPECT_EQ(advice.errorCount, 0U);
  for (QuindlePlannedSelect& select : planQuindle(document, diag)) {
    const QuindlePlanNode plan = select.plan;
    select.plan = {};
    const std::vector<QuindlePlanLine> lines = quindlePlanLines(plan);
    EXPECT_THAT(lines, SizeIs(nesting.planned));
    EXPECT_EQ(lines.front().cost, plan.cost());
    EXPECT_EQ(plan.cost(), 10U);
    EXPECT_GT(plan.describe().size(), nesting.planned);
  }
  RecordingScene scene;
  QuindleRunResult result;
  EXPECT_EQ(QuindleRuntime(scene).run(document, {}, false, result, diag), nesting.runs) << diag.firstError();
  EXPECT_EQ(result.report.empty() ? "" : result.report.back(), nesting.runs ? "5" : "");
}

TEST(DeepNesting, IsTakenByEveryPassOnASmallStack) {
  for (const Nesting& nesting : nestings) {
    SCOPED_TRACE(nesting.what);
    onSmallStack([&] { takesAllPasses(nesting); }, tinyStackBytes);
  }
}

} // namespace
} // namespace Zamt::Testing
