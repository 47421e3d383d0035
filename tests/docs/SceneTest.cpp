#include "docs/samples/TinyScene.h"
#include "quindle/Quindle.h"
#include "tests/support/parsed.h"

#include <gmock/gmock.h>

using testing::ElementsAre;
using testing::IsEmpty;

namespace Zamt::Testing {
namespace {

TEST(TinyScene, PreviewsRunsAndHasNothingLeftToDo) {
  const QuindleDocument roofs = parsed(R"(quindle "Roofs" {
    param cloud : Grid = active
    param strength : Number = 100
    on run {
        select class("1") and Amplitude >= strength
        classify into "Building" as 6
        report "{selected} of {total}"
    }
})");
  TinyScene scene({{150, 1}, {120, 1}, {30, 1}, {150, 2}});
  QuindleRuntime runtime(scene);
  QuindleRunResult result;
  Diag diag;

  ASSERT_TRUE(runtime.run(roofs, {{"cloud", "Cloud"}}, true, result, diag)) << diag.format();
  EXPECT_THAT(result.report, ElementsAre("2 of 4"));
  EXPECT_EQ(scene.points[0].classNumber, 1);

  ASSERT_TRUE(runtime.run(roofs, {{"cloud", "Cloud"}, {"strength", "140"}}, false, result, diag));
  EXPECT_THAT(result.report, ElementsAre("1 of 4"));
  EXPECT_FALSE(result.compiled);
  EXPECT_EQ(scene.points[0].classNumber, 6);
  EXPECT_EQ(scene.points[1].classNumber, 1);

  ASSERT_TRUE(runtime.run(roofs, {{"cloud", "Cloud"}, {"strength", "140"}}, false, result, diag));
  EXPECT_THAT(result.report, ElementsAre("0 of 4"));
  EXPECT_EQ(diag.errorCount, 0U);

  EXPECT_FALSE(runtime.run(roofs, {}, false, result, diag));
  EXPECT_EQ(
      diag.firstError(),
      "The parameter \"cloud\" takes its value from the application, and none was supplied for this run.");
}

TEST(TinyScene, HasNothingToAnswerWhatItLeavesOut) {
  TinyScene scene({});
  Diag diag;
  EXPECT_THAT(scene.objectsPublishing("Brush"), IsEmpty());
  EXPECT_EQ(scene.sourceOf("Cloud", "grid"), "");
  EXPECT_FALSE(scene.QuindleOps::exists("Cloud"));
  EXPECT_FALSE(scene.removeObject("Cloud", diag));
  EXPECT_EQ(scene.createConsumer("Cloud", "Display/Picture", "", diag), "");
  EXPECT_EQ(diag.format(), "Cloud: error: This is not able to create objects that read another one.");
}

} // namespace
} // namespace Zamt::Testing
