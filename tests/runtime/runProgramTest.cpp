#include "tests/runtime/RuntimeTest.h"

#include <limits>

namespace Zamt::Testing {
namespace {

using testing::ElementsAre;
using RunProgramTest = RuntimeTest;

const std::map<std::string, std::string> cloud = {{"data", "Cloud"}};

TEST_F(RunProgramTest, BuildsOnceAndThenOnlyBindsAndFires) {
  const QuindleDocument doc = classifying("report \"{selected} of {total}\"");
  scene.presets["Edit/MaskedLabels"] = {{"modified", "12"}, {"considered", "0"}};
  ASSERT_TRUE(run(doc, cloud));
  EXPECT_TRUE(result.ok && result.compiled && !result.preview);
  EXPECT_EQ(result.settled, 3);
  EXPECT_THAT(result.report, ElementsAre("12 of 0"));
  EXPECT_EQ(diag.format(), "Test: " + wholeNote + "\nnote: Adding a class \"Noise\" with value 1.");
  const Lines firstRun = calls();
  ASSERT_TRUE(run(doc, cloud));
  EXPECT_FALSE(result.compiled);
  EXPECT_EQ(diag.format(), "");
  const Lines everyRun = calls();
  EXPECT_THAT(everyRun, ElementsAre("set Quindle_Test_1_field1.minimum = 5",
                                    "connect Quindle_Test_2_classfield.grid <- Cloud",
                                    "fire Quindle_Test_2_classify.unselectAll", "settle",
                                    "fire Quindle_Test_2_classify.select", "settle",
                                    "fire Quindle_Test_2_classify.applySelection", "settle"));
  ASSERT_EQ(firstRun.size(), 10 + everyRun.size());
  EXPECT_TRUE(std::equal(everyRun.begin(), everyRun.end(), firstRun.begin() + 10));
}

TEST_F(RunProgramTest, CompilesAgainAfterTouchForgetAndANewBrush) {
  QuindleDocument doc = parsedRun("create tool = \"Edit/Tool\"");
  const auto compiles = [&] { return run(doc) && result.compiled && calls().size() == 1; };
  EXPECT_TRUE(compiles());
  EXPECT_FALSE(compiles());
  doc.touch();
  EXPECT_TRUE(compiles());
  runtime.forget("Other");
  runtime.setBrushObject("");
  runtime.setBrushObject("TheBrush");
  EXPECT_FALSE(compiles());
  runtime.forget("Test");
  EXPECT_TRUE(compiles());
  runtime.setBrushObject("MyBrush");
  EXPECT_TRUE(compiles());
}

TEST_F(RunProgramTest, FiresNothingThatWritesInAPreview) {
  const QuindleDocument doc = classifying("report \"{selected}\"\ncall Robot.go\nreport \"{selected}\"");
  scene.presets["Edit/MaskedLabels"] = {{"modified", "3"}};
  scene.add("Robot", "Any/Robot").slots["modified"] = "99";
  EXPECT_TRUE(preview(doc, {{"data", ""}}));
  EXPECT_TRUE(result.preview && result.compiled);
  EXPECT_EQ(result.settled, 2);
  EXPECT_THAT(result.report, ElementsAre("3", "3"));
  Lines fired = calls();
  std::erase_if(fired, [](const std::string& call) { return !call.starts_with("fire"); });
  EXPECT_THAT(fired,
              ElementsAre("fire Quindle_Test_2_classify.unselectAll", "fire Quindle_Test_2_classify.select"));
  EXPECT_TRUE(run(doc, {{"data", ""}}));
  EXPECT_FALSE(result.compiled);
  EXPECT_THAT(result.report, ElementsAre("3", "99"));
  EXPECT_EQ(result.settled, 4);
  scene.settleResult = std::numeric_limits<int>::max();
  EXPECT_TRUE(run(doc, {{"data", ""}}));
  EXPECT_EQ(result.settled, std::numeric_limits<int>::max());
}

TEST_F(RunProgramTest, SaysWhichBindingsHaveNoValueAndKeepsTheProgram) {
  const QuindleDocument doc = parsedRun("select field(f, low, high)",
                                        "param f : Text param low : Number = 1 param high : Number = pick");
  EXPECT_FALSE(run(doc));
  EXPECT_FALSE(result.ok);
  EXPECT_EQ(diag.errorCount, 2U);
  calls();
  scene.refused = {"set Quindle_Test_1_field1.field = "};
  EXPECT_FALSE(run(doc, {{"f", ""}, {"high", "2"}}));
  EXPECT_FALSE(result.compiled);
  EXPECT_THAT(calls(),
              ElementsAre("set Quindle_Test_1_field1.field = ", "set Quindle_Test_1_field1.minimum = 1",
                          "set Quindle_Test_1_field1.maximum = 2"));
}

TEST_F(RunProgramTest, RunsOnlyTheStepsWhoseGuardHolds) {
  const QuindleDocument doc =
      parsedRun("let big = n > 5\nif big { report \"big {n}\" } else { report \"small\" }\n"
                "if not big {\nlet big = true\nif big { report \"now\" }\n}",
                "param n : Number = 1");
  EXPECT_TRUE(run(doc, {{"n", "7"}}));
  EXPECT_THAT(result.report, ElementsAre("big 7"));
  // Each step's guard is worked out anew, so a "let" in a block can shut out the steps behind it.
  EXPECT_TRUE(run(doc));
  EXPECT_THAT(result.report, ElementsAre("small"));
}

TEST_F(RunProgramTest, StopsAtTheFirstStepThatFails) {
  scene.refused = {"fire Robot.go"};
  for (const std::string step :
       {"if nope { report \"no\" }", "let a = nope", "call Robot.go", "run \"X\"()"}) {
    runtime.forget("Test");
    EXPECT_FALSE(run(parsedRun("report \"before\"\n" + step + "\nreport \"after\""))) << step;
    EXPECT_THAT(result.report, ElementsAre("before"));
  }
  EXPECT_EQ(diag.format(),
            "Test: error: \"Test\" runs \"X\", but nothing here knows how to find another Quindle "
            "by name.");
}

TEST_F(RunProgramTest, SaysWhyASelectionFailedAndWhatItsObjectsSay) {
  const QuindleDocument doc =
      parsedRun("select field(\"A\", low, low) and class(kinds)\nclassify into \"Noise\"",
                "param data : Field = active param low : Number = 1 param kinds : Text = a");
  ASSERT_TRUE(run(doc, cloud)) << diag.format();
  scene.objects["Quindle_Test_2_classify"].slots["problem"] = "There is no field A.";
  scene.objects["Quindle_Test_2_classify"].status = "never told";
  for (auto& [name, object] : scene.objects)
    if (object.creator == "Selection/BrushFilterByField") object.status = "no such field";
  EXPECT_FALSE(preview(doc, cloud));
  EXPECT_EQ(diag.format(),
            "Test: error: Nothing was selected, and not because nothing matched: There is no field A.\n"
            "Test: note: \"Quindle_Test_1_field1\" says: no such field");
}

TEST_F(RunProgramTest, NoticesThatTheEditorLostItsClass) {
  const QuindleDocument doc = classifying();
  ASSERT_TRUE(run(doc, cloud));
  scene.objects["Quindle_Test_2_classify"].slots["labels"] = "LabelSet\n";
  for (const bool asPreview : {false, true}) {
    EXPECT_FALSE(run(doc, cloud, asPreview));
    EXPECT_EQ(diag.format(),
              "Test: error: The label set of \"Quindle_Test_2_classify\" names no class to put the points "
              "into, so this cannot have changed anything. Something else is driving that label set: detach "
              "it, and let this Quindle keep the one it plans for itself.");
  }
  scene.objects["Quindle_Test_2_classify"].slots["labels"] = "";
  EXPECT_TRUE(run(doc, cloud));
}

} // namespace
} // namespace Zamt::Testing
