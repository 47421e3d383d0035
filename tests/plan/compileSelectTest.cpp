#include "quindle/plan/compileSelect.h"

#include "tests/plan/planText.h"
#include "tests/support/RecordingScene.h"

#include <gmock/gmock.h>

namespace Zamt {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using Testing::RecordingScene;

const char* const params = "param tile : Region\nparam painted : Region = brush\nparam kinds : Text\n";

struct Select {
  RecordingScene scene;
  Diag diag;
  std::vector<std::string> bindings;
  std::string out;
  bool ok = false;

  explicit Select(const std::string& condition, const std::string& source = "S",
                  const std::set<std::string>& refused = {}) {
    scene.refused = refused;
    std::vector<QuindleBinding> made;
    const QuindleDocument document = Testing::documentOf("select " + condition, params);
    out = source;
    ok = compileSelect(Testing::planOf(condition), document, scene, out, "P_", out, made, diag);
    for (const QuindleBinding& binding : made)
      bindings.push_back(binding.object + '.' + binding.slot + (binding.connect ? " <- " : " = ") +
                         binding.param);
  }
};

TEST(compileSelect, ChainsTheFiltersOfAPlan) {
  const Select select("class(kinds) and (above(\"w.m8\") or inside(tile)) and not (Amplitude > 120)");
  EXPECT_TRUE(select.ok) << select.diag.format();
  EXPECT_EQ(select.out, "P_any5");
  EXPECT_THAT(select.scene.calls,
              ElementsAre("create Selection/BrushFilterByClass P_class1", "connect P_class1.brush <- S",
                          "set P_class1.classfield = Classification",
                          "create Selection/BrushFilterByField P_field2",
                          "connect P_field2.brush <- P_class1", "set P_field2.field = Amplitude",
                          "set P_field2.minimum = 120", "set P_field2.maximum = 1e+300",
                          "set P_field2.component = 0", "set P_field2.invert = true",
                          "create Selection/BrushFilterByTin P_above3", "connect P_above3.brush <- P_field2",
                          "set P_above3.surface = w.m8", "set P_above3.margin = 0",
                          "set P_above3.side = above", "create Selection/BrushFilterByBox P_inside4",
                          "connect P_inside4.brush <- P_field2", "create Selection/BrushFilterAny P_any5",
                          "connect P_any5.brush <- P_above3", "connect P_any5.otherbrush <- P_inside4"));
  EXPECT_THAT(select.bindings, ElementsAre("P_class1.classes = kinds", "P_inside4.box <- tile"));
}

TEST(compileSelect, StartsAtThePaintedRegionWithoutAFilterAndExcludesItWithOne) {
  const Select painted("inside(painted)");
  EXPECT_TRUE(painted.ok);
  EXPECT_EQ(painted.out, "S");
  EXPECT_THAT(painted.scene.calls, IsEmpty());
  EXPECT_THAT(painted.bindings, IsEmpty());
  const Select others("not inside(painted)", "");
  EXPECT_THAT(others.scene.calls,
              ElementsAre("create Selection/BrushFilterByBox P_inside1", "set P_inside1.invert = true"));
  EXPECT_THAT(others.bindings, ElementsAre("P_inside1.box <- painted"));
}

TEST(compileSelect, ReportsEveryArgumentThatCannotBeUsed) {
  const Select select("field(Amplitude, f(1), 1)");
  EXPECT_FALSE(select.ok);
  EXPECT_EQ(select.out, "P_field1");
  EXPECT_EQ(select.diag.format(),
            "field:5:7: error: \"Amplitude\" is not a parameter of this Quindle. Declare it with \"param\", "
            "or put it in quotes if it is the name of something in the data.\n"
            "field:5: error: The \"minimum\" of \"field\" is f(1), which cannot be worked out here.");
}

TEST(compileSelect, GoesOnFromTheLastFilterThatWasMade) {
  const struct {
    const char* condition;
    std::string refused;
    std::string out;
    std::string source; ///< of `out`, where that is a filter
  } cases[] = {
      {"inside(\"a\") and expr(\"b\") and expr(\"c\")", "create Selection/BrushFilterByExpression P_expr2",
       "P_expr3", "P_inside1"},
      {"expr(\"a\") or expr(\"b\") or expr(\"c\")", "connect P_expr1.brush <- S", "P_any4", "P_expr2"},
      {"expr(\"a\") or expr(\"b\") or expr(\"c\")", "create Selection/BrushFilterAny P_any3", "S", ""},
      {"expr(\"a\") or expr(\"b\")", "connect P_any3.brush <- P_expr1", "P_any3", ""},
  };
  for (const auto& [condition, refused, out, source] : cases) {
    Select select(condition, "S", {refused});
    EXPECT_FALSE(select.ok) << refused;
    EXPECT_EQ(select.out, out) << refused;
    EXPECT_EQ(select.scene.sourceOf(out, "brush"), source) << refused;
    if (source.empty()) {
      EXPECT_EQ(select.scene.calls.back(), refused);
    }
  }
  const Select joined("expr(\"a\") or expr(\"b\") or expr(\"c\")");
  EXPECT_EQ(joined.out, "P_any5");
  EXPECT_EQ(joined.scene.objects.at("P_any5").sources.at("brush"), "P_any3");
}

TEST(compileSelect, UsesTheNamesThatTheSceneGivesAndRefusesNodesWithNothingInThem) {
  RecordingScene scene;
  scene.add("P_inside1", "taken");
  std::vector<QuindleBinding> bindings;
  Diag diag;
  std::string out;
  EXPECT_TRUE(compileSelect(Testing::planOf("inside(\"a\") and expr(\"b\")"), {}, scene, "", "P_", out,
                            bindings, diag));
  EXPECT_EQ(scene.sourceOf("P_expr2", "brush"), "P_inside1_2");
  QuindlePlanNode plan;
  EXPECT_FALSE(compileSelect(plan, {}, scene, "S", "P_", out, bindings, diag));
  plan.kind = QuindlePlanNode::Kind::Or;
  plan.line = 4;
  EXPECT_FALSE(compileSelect(plan, {}, scene, "S", "P_", out, bindings, diag));
  EXPECT_EQ(out, "S");
  EXPECT_EQ(diag.format(), ":4: error: An \"or\" with nothing in it.");
}

} // namespace
} // namespace Zamt
