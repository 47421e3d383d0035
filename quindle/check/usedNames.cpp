#include "quindle/check/usedNames.h"

#include "quindle/core/Tree.h"

#include <vector>

namespace Zamt {

namespace {

using Names = std::set<std::string_view>;

void addReferences(const QuindleExpr& root, Names& names) {
  if (root.kind == QuindleExpr::Kind::None && root.operands.empty()) return;
  tree::walk(
      root, [](const QuindleExpr& expr) -> const auto& { return expr.operands; },
      [&names](const QuindleExpr& expr, const QuindleExpr*, std::size_t index) {
        if (index == 0 && expr.kind == QuindleExpr::Kind::Reference) names.insert(expr.name);
      });
}

void addPlaceholders(std::string_view line, Names& names) {
  for (;;) {
    const std::size_t open = line.find('{');
    if (open == std::string_view::npos) return;
    const std::size_t close = line.find('}', open);
    if (close == std::string_view::npos) return;
    names.insert(line.substr(open + 1, close - open - 1));
    line.remove_prefix(close + 1);
  }
}

void addNames(const QuindleStep& step, Names& names) {
  addReferences(step.value, names);
  addReferences(step.condition, names);
  for (const QuindleExpr& arg : step.args) addReferences(arg, names);
  const bool isLine = step.kind == QuindleStep::Kind::Report &&
                      step.value.kind == QuindleExpr::Kind::Literal &&
                      step.value.value.kind == QuindleValue::Kind::Text;
  if (isLine) addPlaceholders(step.value.value.textValue, names);
}

} // namespace

std::set<std::string_view> usedNames(const QuindleDocument& doc) {
  Names names;
  std::vector<const std::vector<QuindleStep>*> pending;
  for (const QuindleTrigger& trigger : doc.triggers) pending.push_back(&trigger.steps);
  while (!pending.empty()) {
    const std::vector<QuindleStep>& steps = *pending.back();
    pending.pop_back();
    for (const QuindleStep& step : steps) {
      addNames(step, names);
      for (const std::vector<QuindleStep>* block : {&step.body, &step.elseBody})
        if (!block->empty()) pending.push_back(block);
    }
  }
  return names;
}

} // namespace Zamt
