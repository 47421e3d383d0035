#include "quindle/runtime/StepGuards.h"
#include "tests/runtime/RuntimeTest.h"

#include <utility>

namespace Zamt::Testing {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using CompileProgramTest = RuntimeTest;

TEST_F(CompileProgramTest, BuildsObjectsAtOnceAndLeavesActionsBehind) {
  const QuindleRuntime::Program program = compiled(
      parsedRun("create tool = \"Edit/Tool\"\nset tool.size = 2.50\nset Sun.visible = true\n"
                "connect tool.grid <- Cloud.grid\nconnect tool.view <- View\n"
                "let a = 1\nif a > 0 { call tool.\"Do It.Now\"(1) } else { set tool.name = \"idle\" }\n"
                "run \"Other\"(b: a)\nreport \"done\""));
  EXPECT_THAT(calls(),
              ElementsAre("create Edit/Tool Quindle_Test_tool", "set Quindle_Test_tool.size = 2.50",
                          "set Sun.visible = true", "connect Quindle_Test_tool.grid <- Cloud.grid",
                          "connect Quindle_Test_tool.view <- View", "set Quindle_Test_tool.name = idle"));
  EXPECT_THAT(listed(program), ElementsAre("[] let a = 1", "[a > 0] fire tool.Do It.Now writes",
                                           "[] run Other b: a", "[] report done"));
  EXPECT_EQ(diag.format(), "");
}

TEST_F(CompileProgramTest, NarrowsOneChainThroughAllBlocksAndNumbersWhatItMakes) {
  const QuindleRuntime::Program program = compiled(parsedRun(
      "select expr(\"A\")\nif on { select expr(\"B\") } else { classify into \"X\" }\nclassify into \"Y\"",
      "param on : Number = 1 param data : Field = active"));
  Lines connected = calls();
  std::erase_if(connected, [](const std::string& call) { return !call.starts_with("connect"); });
  EXPECT_THAT(connected, ElementsAre("connect Quindle_Test_2_expr1.brush <- Quindle_Test_1_expr1",
                                     "connect Quindle_Test_3_classify.brush <- Quindle_Test_2_expr1",
                                     "connect Quindle_Test_4_classify.brush <- Quindle_Test_2_expr1"));
  EXPECT_THAT(listed(program), ElementsAre("[not on] fire Quindle_Test_3_classify.unselectAll",
                                           "[not on] fire Quindle_Test_3_classify.select counts",
                                           "[not on] fire Quindle_Test_3_classify.applySelection writes",
                                           "[] fire Quindle_Test_4_classify.unselectAll",
                                           "[] fire Quindle_Test_4_classify.select counts",
                                           "[] fire Quindle_Test_4_classify.applySelection writes"));
  EXPECT_EQ(program.editorObject, "Quindle_Test_4_classify");
}

TEST_F(CompileProgramTest, NestsGuardsToTheLeft) {
  const QuindleRuntime::Program program =
      compiled(parsedRun("if a {\n} else { if b { if c { report \"x\" } else { report \"y\" } } }"));
  EXPECT_THAT(listed(program),
              ElementsAre("[not a and b and c] report x", "[not a and b and not c] report y"));
  EXPECT_EQ(program.steps.at(0).guard.operands.at(0).toSource(), "not a and b");
}

TEST_F(CompileProgramTest, ReportsEveryFaultAtItsStep) {
  QuindleDocument doc = parsedRun("set a.b = c\nset noslot = 1\nconnect noslot <- a\ncall noaction\n"
                                  "for each x in y { report \"never\" }\nif a {\nset lost.slot = 1\n}\n"
                                  "create gone = \"A/B\"\ncreate empty = \"C/D\"\nreport \"kept\"");
  doc.triggers[0].steps.at(7).value.value.textValue.clear();
  scene.refused = {"set lost.slot = 1", "create A/B Quindle_Test_gone"};
  EXPECT_THAT(listed(compiled(doc, false)), ElementsAre("[] report kept"));
  EXPECT_EQ(diag.format(),
            "test.quindle:2: error: Only a written-out value can be set for now.\n"
            "test.quindle:3: error: \"noslot\" does not name a slot. Write it as Object.slot.\n"
            "test.quindle:4: error: \"noslot\" does not name a slot. Write it as Object.slot.\n"
            "test.quindle:5: error: \"noaction\" does not name an action. Write it as Object.action.\n"
            "test.quindle:6: error: This kind of step cannot be run yet.\n"
            "scene: error: refused: set lost.slot = 1\n"
            "scene: error: refused: create A/B Quindle_Test_gone\n"
            "test.quindle:11: error: This does not say what to make \"empty\" from. Write the creator as "
            "\"Category/Identifier\".");
}

TEST_F(CompileProgramTest, KeepsTheNamesThatTheSceneGaveUntilTheNextProgram) {
  scene.add("Quindle_Test_tool", "Any/Thing");
  compiled(parsedRun("create tool = \"Edit/Tool\"\nset tool.size = 1"));
  EXPECT_EQ(calls().back(), "set Quindle_Test_tool_2.size = 1");
  compiled(parsed("quindle \"Idle\" { on load { report \"x\" } }"), false);
  EXPECT_EQ(diag.format(), "Idle: error: This Quindle has nothing to run.");
  EXPECT_EQ(runtime.objectNamed("tool"), "Quindle_Test_tool_2");
  compiled(parsedRun("report \"x\""));
  EXPECT_EQ(runtime.objectNamed("tool"), "tool");
}

TEST_F(CompileProgramTest, StartsFromTheBrushOnlyWhenASelectNamesIt) {
  const std::tuple<std::string, bool, std::string> cases[] = {
      {"report \"{r}\"", false, ""},
      {"select field(\"A\", 0, 1)\nif 1 { select field(\"A\", 0, 1) }", false, "Test: " + wholeNote},
      {"if 1 { if 2 { } else { select field(\"A\", 0, 1) and not (class(2) or inside(r)) } }", true, ""}};
  scene.add("TheBrush", "Any/Brush");
  for (const auto& [steps, brushed, said] : cases) {
    compiled(parsedRun(steps, "param r : Region = brush"));
    EXPECT_EQ(diag.format(), said) << steps;
    EXPECT_EQ(!scene.consumersOf("TheBrush").empty(), brushed) << steps;
  }
}

/// `steps` under an "if" whose condition weighs one less than `weight`, which counts the block itself too.
QuindleStep block(std::size_t weight, std::vector<QuindleStep> steps) {
  QuindleStep step;
  step.kind = QuindleStep::Kind::If;
  step.condition.kind = QuindleExpr::Kind::Literal;
  step.condition.value = QuindleValue::text(std::string((weight - 2) * 16, 'x'));
  step.body = std::move(steps);
  return step;
}

TEST_F(CompileProgramTest, BoundsWhatAllGuardsTogetherWeigh) {
  QuindleStep report;
  report.kind = QuindleStep::Kind::Report;
  report.value.kind = QuindleExpr::Kind::Literal;
  report.line = 7;
  QuindleDocument doc = parsedRun("");
  std::vector<QuindleStep>& steps = doc.triggers[0].steps;
  constexpr std::size_t tenth = maxGuardWeight / 10;
  steps = {block(tenth, std::vector<QuindleStep>(9, report)), block(tenth, {report})};
  EXPECT_EQ(compiled(doc).steps.size(), 10U);
  steps[1] = block(tenth + 1, {report, report});
  EXPECT_EQ(compiled(doc, false).steps.size(), 9U);
  EXPECT_EQ(diag.format(),
            "test.quindle:7: error: The conditions of the \"if\" blocks around the steps of this Quindle add "
            "up to more than can be kept, since every step carries all those around it. Nest the blocks less "
            "deeply, or move some of the steps to a Quindle of their own and \"run\" that.");
}

} // namespace
} // namespace Zamt::Testing
