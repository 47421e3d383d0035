#include "tests/runtime/RuntimeTest.h"

namespace Zamt::Testing {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class PreviewDisplayTest : public RuntimeTest {
protected:
  const std::string createMask = "create Lattix/Field Quindle_PreviewMask";
  const std::string connectGrid = "connect Quindle_PreviewMask.grid <- Cloud";
  const std::string setField = "set Quindle_PreviewMask.fieldname = mask@mask";
  const std::string connectLeft = "connect Left.mask <- Quindle_PreviewMask";
  const std::string connectRight = "connect Right.mask <- Quindle_PreviewMask";
  const QuindleDocument doc =
      parsedRun("", "param n : Number = 1 param other : Field = pick param data : Grid");

  PreviewDisplayTest() {
    scene.add("Left", "Display/Picture").sources["grid"] = "Cloud";
    scene.add("Right", "Display/Picture").sources["grid"] = "Cloud.grid";
    scene.add("Writer", "Output/Display").sources["grid"] = "Cloud";
    scene.add("Far", "Display/Picture").sources["grid"] = "Other";
  }

  std::string show(const std::map<std::string, std::string>& args = {{"data", "Cloud"}},
                   const std::string& editor = "Editor") {
    Diag notes;
    runtime.showWhatWouldChange(doc, args, editor, notes);
    return notes.format();
  }
};

TEST_F(PreviewDisplayTest, TellsHowTheMaskWasTaken) {
  const std::string attached =
      "The selection is attached to the display of \"Cloud\" as its mask, so the affected points are drawn "
      "in its mask colour. If nothing looks different, that display is not drawing the mask: its "
      "\"maskdisplay\" decides whether a masked point is filled or only outlined, and an outline does not "
      "show on a distant dot. The counts above are exact either way. It goes away on the next run.";
  const std::string but = "The preview was worked out, but ";
  const std::string unpointed = but + "the mask could not be pointed at \"Cloud\": refused: ";
  const Lines all{createMask, connectGrid, setField, connectLeft, connectRight};
  // What is refused, what is said and how many of the calls are made.
  const std::tuple<std::set<std::string>, std::string, int> cases[] = {
      {{}, attached, 5},
      {{connectLeft}, attached, 5},
      {{connectLeft, connectRight},
       but + "nothing displaying \"Cloud\" would take the mask, so there is no picture of it: refused: " +
           connectLeft,
       5},
      {{setField}, unpointed + setField, 3},
      {{connectGrid}, unpointed + connectGrid, 2},
      {{createMask},
       but + "the mask could not be published for a display to show: refused: " + createMask,
       1}};
  for (const auto& [refused, note, made] : cases) {
    scene.refused = refused;
    EXPECT_EQ(show(), "Test: note: " + note);
    EXPECT_EQ(calls(), Lines(all.begin(), all.begin() + made));
    runtime.forgetPreviewDisplay(diag);
    EXPECT_EQ(calls(), made > 1 ? Lines{"remove Quindle_PreviewMask"} : Lines{});
  }
}

TEST_F(PreviewDisplayTest, DoesNothingWithoutAnEditorOrDataAndSaysSoWithoutADisplay) {
  EXPECT_EQ(show({{"data", "Cloud"}}, ""), "");
  EXPECT_EQ(show({}), "");
  EXPECT_EQ(show({{"data", "Cloud"}, {"other", "Unseen"}}),
            "Test: note: Nothing is displaying \"Unseen\", so there is no way to show what this would "
            "affect. The counts above are the whole of what this preview can tell you.");
  EXPECT_THAT(calls(), IsEmpty());
}

TEST_F(PreviewDisplayTest, TakesTheFieldFromTheEditorAndGoesWithTheNextRun) {
  scene.add("Editor", "Edit/MaskedLabels").slots["maskfield"] = "marked";
  show();
  EXPECT_EQ(scene.objects["Quindle_PreviewMask"].slots["fieldname"], "marked@marked");
  calls();
  QuindleDocument off = parsedRun("create tool = \"Edit/Tool\"");
  off.enabled = false;
  scene.refused = {"remove Quindle_PreviewMask"};
  run(off);
  EXPECT_EQ(diag.format(), "Test: warning: \"Test\" is switched off.");
  run(off);
  EXPECT_THAT(calls(), ElementsAre("remove Quindle_PreviewMask"));
}

} // namespace
} // namespace Zamt::Testing
