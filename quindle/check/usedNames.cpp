#include "quindle/check/usedNames.h"

#include "quindle/check/placeholders.h"
#include "quindle/core/NestedSteps.h"

namespace Zamt {

namespace {

using Names = std::set<std::string_view>;

void addReferences(const QuindleExpr& root, Names& names) {
  if (root.kind == QuindleExpr::Kind::None && root.operands.empty()) return;
  tree::each(
      root, [](const QuindleExpr& expr) -> const auto& { return expr.operands; },
      [&names](const QuindleExpr& expr) {
        if (expr.kind == QuindleExpr::Kind::Reference) names.insert(expr.name);
      });
}

void addNames(const QuindleStep& step, Names& names) {
  addReferences(step.value, names);
  addReferences(step.condition, names);
  for (const QuindleExpr& arg : step.args) addReferences(arg, names);
  const bool isLine = step.kind == QuindleStep::Kind::Report &&
                      step.value.kind == QuindleExpr::Kind::Literal &&
                      step.value.value.kind == QuindleValue::Kind::Text;
  if (!isLine) return;
  for (const std::string_view word : placeholders(step.value.value.textValue)) names.insert(word);
}

} // namespace

std::set<std::string_view> usedNames(const QuindleDocument& doc) {
  Names names;
  for (const QuindleTrigger& trigger : doc.triggers)
    eachStepWithin(trigger.steps, NestedSteps::all,
                   [&names](const QuindleStep& step) { addNames(step, names); });
  return names;
}

} // namespace Zamt
