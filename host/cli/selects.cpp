#include "host/cli/selects.h"

#include <utility>

namespace Zamt::Host {

std::vector<const QuindleStep*> allSelects(const QuindleDocument& document) {
  std::vector<const QuindleStep*> selects;
  std::vector<const QuindleStep*> pending; // a stack: the next step of the text is at its end
  const auto push = [&pending](const std::vector<QuindleStep>& steps) {
    for (std::size_t i = steps.size(); i-- > 0;) pending.push_back(&steps[i]);
  };
  for (std::size_t i = document.triggers.size(); i-- > 0;) push(document.triggers[i].steps);
  while (!pending.empty()) {
    const QuindleStep& step = *pending.back();
    pending.pop_back();
    if (step.kind == QuindleStep::Kind::Select) selects.push_back(&step);
    push(step.elseBody);
    push(step.body);
  }
  return selects;
}

std::vector<PlannedSelect> planSelects(const QuindleDocument& document, Diag& diag) {
  std::vector<PlannedSelect> planned;
  for (const QuindleStep* step : allSelects(document)) {
    PlannedSelect& select = planned.emplace_back();
    select.step = step;
    select.good = planPredicate(step->condition, select.plan, diag, document.sourceFile);
  }
  return planned;
}

} // namespace Zamt::Host
