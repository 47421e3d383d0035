#include "quindle/plan/planQuindle.h"

#include "quindle/core/QuindleNodes.h"
#include "quindle/core/Tree.h"
#include "quindle/plan/combinedCost.h"
#include "quindle/plan/unguarded.h"

namespace Zamt {

std::vector<QuindlePlannedSelect> Unguarded::planQuindle(const QuindleDocument& document, Diag& diag) {
  std::vector<QuindlePlannedSelect> planned;
  for (const QuindleStep* const step : quindleSteps(document)) {
    if (step->kind != QuindleStep::Kind::Select) continue;
    QuindlePlannedSelect& select = planned.emplace_back();
    select.step = step;
    select.good = Unguarded::planPredicate(step->condition, select.plan, diag, document.sourceFile);
  }
  return planned;
}

std::vector<QuindlePlannedSelect> planQuindle(const QuindleDocument& document, Diag& diag) {
  return guarded(diag, std::vector<QuindlePlannedSelect>(),
                 [&] { return Unguarded::planQuindle(document, diag); });
}

std::vector<QuindlePlanLine> quindlePlanLines(const QuindlePlanNode& plan) {
  using Place = tree::Place<QuindlePlanNode>;
  std::vector<QuindlePlanLine> lines;
  std::vector<std::size_t> open; // the lines of the nodes on the way down
  const auto enter = [&](const QuindlePlanNode& node, const Place& place) {
    open.push_back(lines.size());
    lines.push_back({&node, place.depth, node.operation ? node.operation->cost : 0});
  };
  const auto leave = [&](const QuindlePlanNode& /*node*/, const Place& place) {
    const std::uint32_t cost = lines[open.back()].cost;
    open.pop_back();
    if (!place.parent) return;
    std::uint32_t& around = lines[open.back()].cost;
    around = combinedCost(place.parent->kind, around, cost);
  };
  tree::each(
      plan, [](const QuindlePlanNode& node) -> const auto& { return node.children; }, enter, leave);
  return lines;
}

} // namespace Zamt
