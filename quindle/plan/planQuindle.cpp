#include "quindle/plan/planQuindle.h"

#include "quindle/core/QuindleNodes.h"
#include "quindle/core/Tree.h"
#include "quindle/plan/combinedCost.h"

namespace Zamt {

std::vector<QuindlePlannedSelect> planQuindle(const QuindleDocument& document, Diag& diag) {
  std::vector<QuindlePlannedSelect> planned;
  for (const QuindleStep* const step : quindleSteps(document)) {
    if (step->kind != QuindleStep::Kind::Select) continue;
    QuindlePlannedSelect& select = planned.emplace_back();
    select.step = step;
    select.good = planPredicate(step->condition, select.plan, diag, document.sourceFile);
  }
  return planned;
}

std::vector<QuindlePlanLine> quindlePlanLines(const QuindlePlanNode& plan) {
  std::vector<QuindlePlanLine> lines;
  std::vector<std::size_t> open; // the lines of the nodes being walked, outermost first
  const auto visit = [&](const QuindlePlanNode& node, const QuindlePlanNode* parent, std::size_t index) {
    if (index == 0) {
      const bool counts = node.kind == QuindlePlanNode::Kind::Condition && node.operation;
      open.push_back(lines.size());
      lines.push_back({&node, open.size() - 1, counts ? node.operation->cost : 0});
    }
    if (index < node.children.size()) return;
    const std::uint32_t cost = lines[open.back()].cost;
    open.pop_back();
    if (!parent) return;
    std::uint32_t& around = lines[open.back()].cost;
    around = combinedCost(parent->kind, around, cost);
  };
  tree::walk(
      plan, [](const QuindlePlanNode& node) -> const auto& { return node.children; }, visit);
  return lines;
}

} // namespace Zamt
