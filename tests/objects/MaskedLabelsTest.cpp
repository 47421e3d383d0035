#include "tests/session/scenes.h"

#include "sorbine/ValuePool.h"

namespace Zamt::Testing {
namespace {

class MaskedLabelsTest : public SceneTest {
public:
  /// Runs `steps` on the sample with a cloud parameter and gives all that was said and reported.
  std::string said(const std::string& steps) {
    if (!scene.grid()) {
      Diag opening;
      EXPECT_TRUE(scene.openCloud(sample(), {}, opening)) << opening.format();
    }
    const QuindleDocument doc = parsedRun(steps, "param cloud : Grid = active");
    scene.runtime().forget(doc.name);
    QuindleRunResult result;
    Diag diag;
    scene.run(doc, {}, false, result, diag);
    std::string text;
    for (const Diag::Entry& entry : diag.entries)
      if (entry.severity != Diag::Severity::Note) text += entry.format() + '\n';
    for (const std::string& line : result.report) text += line + '\n';
    return text;
  }

  Host::Scene scene{goOn};
};

TEST_F(MaskedLabelsTest, ASecondStepSeesWhatTheFirstChangedAndTwoNewClassesGetTwoNumbers) {
  EXPECT_EQ(said("select class(\"Ground\")\nclassify into \"One\"\nselect class(\"High Vegetation\")\n"
                 "classify into \"Two\"\nreport \"{selected}\""),
            "0\n")
      << "a second select narrows the first";
  EXPECT_EQ(scene.grid()->addedClasses, (std::map<std::uint8_t, std::string>{{64, "One"}}));
  const std::uint64_t high = countsOf(*scene.grid()->cloud)[5];
  EXPECT_EQ(said("select class(\"High Vegetation\")\nclassify into \"Two\"\nreport \"{selected}\""),
            std::to_string(high) + "\n");
  EXPECT_EQ(scene.grid()->addedClasses, (std::map<std::uint8_t, std::string>{{64, "One"}, {65, "Two"}}));
}

TEST_F(MaskedLabelsTest, WhatCannotBeSelectedIsAProblemInWordsAndNotAZero) {
  const std::string lead = "Test: error: Nothing was selected, and not because nothing matched: ";
  const std::pair<std::string, std::string> cases[] = {
      {"field(\"NormalVector\", 0, 1, 3)",
       "The field \"NormalVector\" has 3 components. Give a whole number from 0 to 2."},
      {"above(\"missing.ply\")",
       "The surface \"missing.ply\" can't be read: No such file or directory. Check its name and that it may "
       "be read."},
      {"neighbours(-1)", "The radius of neighbours is a distance. Give 0 or more."},
  };
  for (const auto& [condition, sentence] : cases)
    EXPECT_EQ(said("select " + condition + "\nclassify into \"Water\""), lead + sentence + "\n");
}

TEST_F(MaskedLabelsTest, WhereClassesAreSingledOutOneWithoutANameIsNotAmongThem) {
  said("create e = \"Edit/MaskedLabels\"\ncreate f = \"Lattix/Field\"\n"
       "set f.fieldname = \"Classification@Classification\"\nconnect f.grid <- Cloud\n"
       "connect e.labelfield <- f.field");
  constexpr std::uint8_t nameless = 77;
  setClasses(*scene.grid()->cloud, nameless, [](std::uint64_t point) { return point % 3 == 0; });
  const std::uint64_t ground = countsOf(*scene.grid()->cloud)[2];
  LabelSet labels;
  for (const std::int32_t number : {2, 5, 23}) labels.labels[number].flags["editable"] = number == 2;
  labels.selections["Assign"] = 23;
  TolvenQuindleOps ops(std::make_shared<ValuePool>());
  Diag diag;
  const auto editor = Host::MaskedLabels::all().at(0);
  ASSERT_TRUE(ops.setParam(editor->name(), "labels", VValueTrait<LabelSet>::Text(labels), diag) &&
              ops.fireAction(editor->name(), "select", diag))
      << diag.format();
  ops.settle();
  EXPECT_GT(ground, 0U);
  EXPECT_EQ(editor->change().modified, ground);
  EXPECT_EQ(editor->change().from[nameless], 0U);
}

TEST_F(MaskedLabelsTest, AClassThatTheFormatCannotHoldIsRefusedBeforeAnythingIsCounted) {
  REQUIRE_REAL_CLOUDS();
  const std::string file = real("autzen-thin.las");
  Diag diag;
  ASSERT_TRUE(scene.openCloud(file, {}, diag));
  EXPECT_EQ(
      said("select class(\"Ground\")\nclassify into \"Mine\" as 32\nreport \"{selected}\""),
      "Test: warning: The editor did not report a count, so \"{selected}\" is left unfilled in the report.\n"
      "Test: error: Nothing was selected, and not because nothing matched: Class 32 does not fit: point "
      "format 3 holds classes up to 31. Choose a lower number with \"as\".\n{selected}\n");
}

TEST_F(MaskedLabelsTest, BrushesThatRunInACircleAreToldAndDoNotHang) {
  const std::string text =
      said("create a = \"Selection/BrushFilterByField\"\n"
           "create b = \"Selection/BrushFilterByField\"\n"
           "create e = \"Edit/MaskedLabels\"\ncreate f = \"Lattix/Field\"\n"
           "set f.fieldname = \"Classification@Classification\"\nconnect f.grid <- Cloud\n"
           "connect a.brush <- b\nconnect b.brush <- a\nconnect e.brush <- a\n"
           "connect e.labelfield <- f.field\nselect class(\"Ground\")\n"
           "classify into \"Water\"\ncall e.select");
  EXPECT_NE(text.find("The label set names no class"), std::string::npos) << text;
}

} // namespace
} // namespace Zamt::Testing
