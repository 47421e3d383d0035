#include "quindle/plan/planQuindle.h"

#include "quindle/plan/diagnoseQuindle.h"
#include "tests/plan/planText.h"

namespace Zamt {
namespace {

TEST(diagnoseQuindle, TellsFaultsOfTextDocumentAndPlansInThisOrder) {
  const std::string bare = "error: \"Ground\" on its own is not a condition. Compare it with something, or "
                           "call it as a condition.";
  const std::pair<std::string, std::string> cases[] = {
      {"quindle \"D\" { description \"d\" on run { select vertical() } }", ""},
      {"quindle \"D\" { on run { select Ground\nlet x 3 } }",
       "f:2:7: error: Expected \"=\" but found the number 3."},
      {"quindle \"D\" { on run { select a < 1 && b < 2\nselect !c\n} }",
       "f:1:37: error: Expected a step but found \"&\".\n"
       "f:1:37: note: Write \"and\" where other languages have \"&&\".\n"
       "f:2:8: error: Expected a step but found \"!\".\n"
       "f:2:8: note: Write \"not\" where other languages have \"!\"."},
      {"quindle \"D\" { on run { select a = 1 }\n category = \"c\" }",
       "f:1:33: error: Expected a step but found \"=\".\n"
       "f:1:33: note: A comparison is written \"==\", and behind the name of an argument stands \":\".\n"
       "f:2:11: error: Expected the category in quotes but found \"=\".\n"
       "f:2:11: error: Expected a setting, a parameter or a trigger, but found \"=\"."},
      {"quindle \"D\" { description \"d\" on run { if true {\nselect Ground } else { for each a in b {\n"
       "select Ground } } } on load {\nselect Ground\nrun \"D\"() } }",
       "f:5: error: This Quindle runs itself, which would never stop.\nf:2:8: " + bare + "\nf:3:8: " + bare +
           "\nf:4:8: " + bare},
  };
  for (const auto& [text, faults] : cases) {
    QuindleDocument document = Testing::parsed("quindle \"Before\" { shortcut \"U\" }");
    Diag diag;
    diag.error("before");
    EXPECT_EQ(diagnoseQuindle(text, "f", document, diag), faults.empty()) << text;
    EXPECT_EQ(diag.format(), "error: before" + (faults.empty() ? "" : "\n" + faults)) << text;
    EXPECT_EQ(document.name + document.shortcut, "D");
  }
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
