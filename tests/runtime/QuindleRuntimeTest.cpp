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

/// What comes of looking for a brush in a scene where something draws points, or nothing, and where an object
/// feeds the new brush by itself, or none.
void expectBrush(const std::string& drawing, const std::string& feeding, const std::set<std::string>& refused,
                 const std::string& brush, const std::string& said, const std::vector<std::string>& calls) {
  RecordingScene scene;
  if (!drawing.empty()) scene.add(drawing, "View/Screen", {"PointDataChunk"});
  if (!feeding.empty()) scene.feeds["Compute/BrushFromScreenPoints"] = {{"screenpoints", feeding}};
  scene.refused = refused;
  Diag diag;
  EXPECT_EQ(QuindleRuntime(scene).ensureBrushObject(diag), brush);
  EXPECT_EQ(diag.format(), said);
  EXPECT_EQ(scene.takeCalls(), calls);
}

TEST_F(QuindleRuntimeTest, MakesABrushAndSwitchesItsDrawingOn) {
  const std::string made = "QuindleBrush";
  const std::string setView = "set Quindle_View.mode = brush";
  const auto switchedOn = [](const std::string& source) {
    return "QuindleBrush: note: Nothing in the scene published a brush, so \"QuindleBrush\" was made and \"" +
           source + "\" switched on - draw on the view to select.";
  };
  expectBrush("", "", {}, made,
              "QuindleBrush: warning: The brush was made but nothing is drawing into it, so there will be "
              "nothing to select until something does.",
              {createBrush, "settle"});
  expectBrush("Quindle_View", "", {}, made, switchedOn("Quindle_View"), {createBrush, "settle", setView});
  expectBrush("Quindle_View", "Pen", {}, made, switchedOn("Pen"),
              {createBrush, "settle", "set Pen.mode = brush"});
  expectBrush("Quindle_View", "", {setView}, made,
              "scene: error: refused: " + setView +
                  "\nQuindle_View: warning: The brush was made but its lasso could not be switched on, so "
                  "drawing on the screen will not select anything yet.",
              {createBrush, "settle", setView});
  expectBrush("Quindle_View", "", {createBrush}, "",
              "scene: error: refused: " + createBrush +
                  "\nCompute/BrushFromScreenPoints: error: Nothing in the scene publishes a brush to select "
                  "from, and one could not be made.",
              {createBrush});
}

TEST_F(QuindleRuntimeTest, SelectsFromThePinnedBrushAndFailsWithoutOne) {
  runtime.setBrushObject("Mine");
  compiled(parsedRun("select field(\"A\", 0, 1)"));
  EXPECT_EQ(diag.format(), "");
  EXPECT_THAT(calls(), testing::Contains("connect Quindle_Test_1_field1.brush <- Mine"));
  scene.refused = {createBrush};
  QuindleRuntime unpinned(scene);
  EXPECT_FALSE(unpinned.run(parsedRun("create a = \"A/B\"\nselect inside(r)", "param r : Region = brush"), {},
                            false, result, diag));
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
