#include "tests/runtime/RuntimeTest.h"

namespace Zamt::Testing {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
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
}

TEST_F(RunProgramTest, SaysWhichBindingsHaveNoValueAndKeepsTheProgram) {
  const QuindleDocument doc = parsedRun("select field(f, low, high)",
                                        "param f : Text param low : Number = 1 param high : Number = pick");
  EXPECT_FALSE(run(doc));
  EXPECT_FALSE(result.ok);
  EXPECT_EQ(diag.format(), "Test: " + wholeNote +
                               "\nTest: error: No value for the parameter \"f\", and it has no default.\n"
                               "Test: error: The parameter \"high\" takes its value from the application, "
                               "and none was supplied for this run.");
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
  const std::string nope = "error: \"nope\" has no value here. It is neither a parameter of this Quindle nor "
                           "set by an earlier \"let\".";
  const std::pair<const char*, std::string> cases[] = {
      {"if nope { report \"no\" }", "test.quindle:3:4: " + nope},
      {"let a = nope", "test.quindle:3:9: " + nope},
      {"call Robot.go", "scene: error: refused: fire Robot.go"},
      {"run \"X\"()",
       "Test: error: \"Test\" runs \"X\", but nothing here knows how to find another Quindle by name."}};
  scene.refused = {"fire Robot.go"};
  for (const auto& [step, said] : cases) {
    runtime.forget("Test");
    EXPECT_FALSE(run(parsedRun("report \"before\"\n" + std::string(step) + "\nreport \"after\""))) << step;
    EXPECT_THAT(result.report, ElementsAre("before"));
    EXPECT_EQ(diag.format(), said);
  }
}

TEST_F(RunProgramTest, RunsNothingThatIsSwitchedOff) {
  QuindleDocument doc = parsedRun("create tool = \"Edit/Tool\"");
  doc.enabled = false;
  result.report = {"old"};
  EXPECT_FALSE(preview(doc));
  EXPECT_TRUE(result.preview && !result.ok && !result.compiled && result.report.empty());
  EXPECT_EQ(diag.format(), "Test: warning: \"Test\" is switched off.");
  EXPECT_THAT(calls(), IsEmpty());
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

/// A scene that can do no more than it has to.
class BareScene : public QuindleOps {
public:
  std::string create(const std::string& creator, const std::string& name, Diag& diag) override {
    return full.create(creator, name, diag);
  }
  bool connect(const std::string& object, const std::string& slot, const std::string& source,
               const std::string& sourceSlot, Diag& diag) override {
    return full.connect(object, slot, source, sourceSlot, diag);
  }
  bool setParam(const std::string& object, const std::string& slot, const std::string& value,
                Diag& diag) override {
    return full.setParam(object, slot, value, diag);
  }
  bool getParam(const std::string& object, const std::string& slot, std::string& value, Diag& diag) override {
    return full.getParam(object, slot, value, diag);
  }
  bool fireAction(const std::string& object, const std::string& action, Diag& diag) override {
    return full.fireAction(object, action, diag);
  }
  int settle() override { return full.settle(); }

  RecordingScene full;
};

TEST(BareSceneTest, IsEnoughToRunAndPreview) {
  BareScene bare;
  bare.full.presets["Edit/MaskedLabels"] = {{"modified", "4"}};
  QuindleRuntime runtime(bare);
  const QuindleDocument doc = parsedRun("select inside(r)\nclassify into \"Noise\"\nreport \"{selected}\"",
                                        "param r : Region = brush param data : Grid = active");
  QuindleRunResult result;
  Diag diag;
  EXPECT_TRUE(runtime.run(doc, cloud, false, result, diag)) << diag.format();
  EXPECT_THAT(result.report, ElementsAre("4"));
  EXPECT_EQ(diag.format(), "QuindleBrush: warning: The brush was made but nothing is drawing into it, so "
                           "there will be nothing to select until something does.\n"
                           "note: Adding a class \"Noise\" with value 1.");
  diag.clear();
  EXPECT_TRUE(runtime.run(doc, cloud, true, result, diag));
  EXPECT_EQ(diag.format(),
            "Test: note: Nothing is displaying \"Cloud\", so there is no way to show what this would affect. "
            "The counts above are the whole of what this preview can tell you.");
  diag.clear();
  EXPECT_EQ(bare.createConsumer("Cloud", "Display/Picture", "", diag), "");
  EXPECT_EQ(diag.format(), "Cloud: error: This is not able to create objects that read another one.");
}

} // namespace
} // namespace Zamt::Testing
