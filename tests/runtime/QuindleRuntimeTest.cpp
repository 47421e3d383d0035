#include "tests/runtime/RuntimeTest.h"

namespace Zamt::Testing {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using QuindleRuntimeTest = RuntimeTest;

const std::string createBrush = "create Compute/BrushFromScreenPoints QuindleBrush";

TEST_F(QuindleRuntimeTest, TakesTheBrushThatIsThereBeforeMakingOne) {
  scene.add("Quindle_Test_1_any", "Selection/BrushFilterAny", {"Brush"});
  scene.add("Polygon", "Compute/Polygon", {"Brush"});
  scene.add("Lasso", "Compute/Lasso", {"Brush"});
  EXPECT_EQ(runtime.ensureBrushObject(diag), "Polygon");
  scene.objects.erase("Polygon");
  EXPECT_EQ(runtime.ensureBrushObject(diag), "Lasso");
  scene.add("TheBrush", "Any/Thing");
  EXPECT_EQ(runtime.ensureBrushObject(diag), "Lasso");
  EXPECT_EQ(QuindleRuntime(scene).ensureBrushObject(diag), "TheBrush");
  EXPECT_THAT(calls(), IsEmpty());
  EXPECT_EQ(diag.format(), "");
}

TEST_F(QuindleRuntimeTest, MakesABrushAndSwitchesItsDrawingOn) {
  struct Case {
    std::string drawing; ///< An object that publishes drawn points.
    std::string feeding; ///< The object that feeds the new brush by itself.
    std::set<std::string> refused;
    std::string brush;
    std::string diag;
    Lines calls;
  };
  const std::string setView = "set Quindle_View.mode = brush";
  const auto switchedOn = [](const std::string& source) {
    return "QuindleBrush: note: Nothing in the scene published a brush, so \"QuindleBrush\" was made and \"" +
           source + "\" switched on - draw on the view to select.";
  };
  const Case cases[] = {
      {"",
       "",
       {},
       "QuindleBrush",
       "QuindleBrush: warning: The brush was made but nothing is drawing into it, so there will be nothing "
       "to select "
       "until something does.",
       {createBrush, "settle"}},
      {"Quindle_View", "", {}, "QuindleBrush", switchedOn("Quindle_View"), {createBrush, "settle", setView}},
      {"Quindle_View",
       "Pen",
       {},
       "QuindleBrush",
       switchedOn("Pen"),
       {createBrush, "settle", "set Pen.mode = brush"}},
      {"Quindle_View",
       "",
       {setView},
       "QuindleBrush",
       "scene: error: refused: set Quindle_View.mode = brush\nQuindle_View: warning: The brush was made but "
       "its lasso "
       "could not be switched on, so drawing on the screen will not select anything yet.",
       {createBrush, "settle", setView}},
      {"Quindle_View",
       "",
       {createBrush},
       "",
       "scene: error: refused: " + createBrush +
           "\nCompute/BrushFromScreenPoints: error: Nothing in the scene publishes a brush to select from, "
           "and one "
           "could not be made.",
       {createBrush}}};
  for (const Case& one : cases) {
    RecordingScene fresh;
    if (!one.drawing.empty()) fresh.add(one.drawing, "View/Screen", {"PointDataChunk"});
    if (!one.feeding.empty()) fresh.feeds["Compute/BrushFromScreenPoints"] = {{"screenpoints", one.feeding}};
    fresh.refused = one.refused;
    QuindleRuntime newRuntime(fresh);
    Diag found;
    EXPECT_EQ(newRuntime.ensureBrushObject(found), one.brush);
    EXPECT_EQ(found.format(), one.diag);
    EXPECT_EQ(fresh.takeCalls(), one.calls);
  }
}

TEST_F(QuindleRuntimeTest, SelectsFromThePinnedBrushEvenWhereNoRegionIsNamed) {
  runtime.setBrushObject("Mine");
  compiled(parsedRun("select field(\"A\", 0, 1)"));
  EXPECT_EQ(diag.format(), "");
  EXPECT_THAT(calls(), testing::Contains("connect Quindle_Test_1_field1.brush <- Mine"));
}

TEST_F(QuindleRuntimeTest, FailsToCompileWithoutABrush) {
  scene.refused = {createBrush};
  compiled(parsedRun("create a = \"A/B\"\nselect inside(r)", "param r : Region = brush"), false);
  EXPECT_THAT(calls(), ElementsAre(createBrush));
}

TEST_F(QuindleRuntimeTest, ListsWhatTheUserHasByKind) {
  scene.add("Quindle_Test_x", "Any/Cloud", {"Grid"});
  scene.add("One", "Any/Cloud", {"Grid"});
  scene.add("quindle_two", "Any/Deep/Cloud", {"Grid"});
  scene.add("Three", "Any/PointCloud", {"Grid"});
  scene.add("Four", "Cloud", {"Grid"});
  EXPECT_THAT(runtime.sceneObjectsPublishing("Grid"), ElementsAre("One", "quindle_two", "Three", "Four"));
  EXPECT_THAT(runtime.sceneObjectsOfKind("Cloud"), IsEmpty());
  for (const char* const name : {"One", "quindle_two", "Three", "Four"})
    scene.objects[name].publishes = {"Cloud"};
  EXPECT_THAT(runtime.sceneObjectsOfKind("Cloud"), ElementsAre("One", "quindle_two"));
}

} // namespace
} // namespace Zamt::Testing
