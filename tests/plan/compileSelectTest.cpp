#include "quindle/plan/compileSelect.h"

#include "tests/support/RecordingScene.h"

#include <gtest/gtest.h>

namespace Zamt {
namespace {

TEST(compileSelect, RefusesNodesWithNothingInThem) {
  Testing::RecordingScene scene;
  std::vector<QuindleBinding> bindings;
  Diag diag;
  std::string out;
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
