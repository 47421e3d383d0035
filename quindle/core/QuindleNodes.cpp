#include "quindle/core/QuindleNodes.h"

#include "quindle/core/NestedSteps.h"
#include "quindle/core/Tree.h"

namespace Zamt {

std::vector<const QuindleStep*> quindleSteps(const QuindleDocument& document) {
  std::vector<const QuindleStep*> steps;
  for (const QuindleTrigger& trigger : document.triggers)
    eachStep(trigger.steps, [&steps](const QuindleStep& step) { steps.push_back(&step); });
  return steps;
}

std::vector<const QuindleExpr*> quindleExprs(const QuindleExpr& root) {
  std::vector<const QuindleExpr*> exprs;
  tree::each(
      root, [](const QuindleExpr& expr) -> const auto& { return expr.operands; },
      [&exprs](const QuindleExpr& expr) { exprs.push_back(&expr); });
  return exprs;
}

} // namespace Zamt
