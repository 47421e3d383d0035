#include "quindle/plan/planQuindle.h"

#include "quindle/plan/diagnoseQuindle.h"
#include "tests/plan/planText.h"
#include "tests/support/goldenCases.h"

namespace Zamt {
namespace {

TEST(diagnoseQuindle, TellsTheFaultsOfTextDocumentAndPlansOfTheGoldenDocument) {
  Testing::expectCases("plan/golden/diagnosed.md", [](const std::string& text) {
    QuindleDocument document = Testing::parsed("quindle \"Before\" { shortcut \"U\" }");
    Diag diag;
    diag.error("before");
    const bool good = diagnoseQuindle(text, "f", document, diag);
    EXPECT_EQ(good, diag.entries.size() == 1);
    EXPECT_EQ(document.name + document.shortcut, "D");
    diag.entries.erase(diag.entries.begin());
    return diag.format();
  });
}

TEST(planQuindle, PlansTheSelectsOfAllBlocksInTheOrderOfTheText) {
  const QuindleDocument document =
      Testing::documentOf("if 1 {\nselect vertical()\nfor each a in b {\nselect expr(\"e\") } } else {\n"
                          "select Ground }\nselect inside(a)\n} on load {\nselect a < 1");
  Diag diag;
  std::string lines;
  for (const QuindlePlannedSelect& select : planQuindle(document, diag))
    lines += std::to_string(select.step->line) + ' ' + (select.good ? select.plan.describe() : "bad") + '\n';
  EXPECT_EQ(lines, "5 vertical(15, \"NormalVector\")\n7 expr(\"e\")\n8 bad\n9 inside(a)\n"
                   "11 field(\"a\", -1e+300, 1, 0)\n");
  EXPECT_EQ(diag.errorCount, 1U);
}

TEST(quindlePlanLines, ListsAPlanDownToItsConditionsWithTheirCosts) {
  const QuindlePlanNode plan =
      Testing::planOf("neighbours(1) < 3 and (expr(\"e\") or inside(a) and vertical()) or class(\"1\")");
  std::string lines;
  for (const QuindlePlanLine& line : quindlePlanLines(plan))
    lines += std::string(line.depth, ' ') + std::to_string(line.cost) +
             (line.node->operation ? ' ' + line.node->operation->name : "") + '\n';
  EXPECT_EQ(lines, "100\n 100\n  100\n   100 expr\n   1\n    1 inside\n    10 vertical\n  10000 neighbours\n"
                   " 10 class\n");
}

} // namespace
} // namespace Zamt
