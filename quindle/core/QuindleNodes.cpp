#include "quindle/core/QuindleNodes.h"

#include "quindle/core/NestedSteps.h"
#include "quindle/core/Tree.h"

namespace Zamt {

std::vector<const QuindleStep*> quindleSteps(const QuindleDocument& document) {
  std::vector<const QuindleStep*> steps;
  const auto nested = [](const QuindleStep& step) { return NestedSteps(step); };
  const auto add = [&steps](const QuindleStep& step, const QuindleStep*, std::size_t index) {
    if (index == 0) steps.push_back(&step);
  };
  for (const QuindleTrigger& trigger : document.triggers)
    for (const QuindleStep& step : trigger.steps) tree::walk(step, nested, add);
  return steps;
}

std::vector<const QuindleExpr*> quindleExprs(const QuindleExpr& root) {
  std::vector<const QuindleExpr*> exprs;
  tree::walk(
      root, [](const QuindleExpr& expr) -> const auto& { return expr.operands; },
      [&exprs](const QuindleExpr& expr, const QuindleExpr*, std::size_t index) {
        if (index == 0) exprs.push_back(&expr);
      });
  return exprs;
}

} // namespace Zamt
