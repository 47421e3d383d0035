#include "host/objects/BrushObject.h"
#include "host/session/Scene.h"
#include "host/session/checkValues.h"
#include "quindle/plan/QuindlePlanNode.h"

namespace Zamt::Host {

bool Scene::compileCondition(const QuindleDocument& document, Diag& diag) {
  if (chain_) return true;
  QuindlePlanNode plan;
  Chain chain;
  if (!planPredicate(document.triggers[0].steps[0].condition, plan, diag, document.name) ||
      !compileSelect(plan, document, *ops_, brush_, "Selected_", chain.end, chain.bindings, diag))
    return false;
  chain_ = std::move(chain);
  return true;
}

bool Scene::bindCondition(const QuindleDocument& document, const std::map<std::string, std::string>& args,
                          Diag& diag) {
  for (const QuindleBinding& binding : chain_->bindings) {
    const QuindleParam* const param = document.findParam(binding.param);
    const auto given = args.find(binding.param);
    const bool written = param != nullptr && param->defaultValue.kind != QuindleValue::Kind::None;
    if (given == args.end() && !written) {
      diag.error("\"" + binding.param + "\" has no value. Give it one with --set " + binding.param +
                     "=VALUE, or write the value in its place.",
                 document.name);
      return false;
    }
    const std::string value = given == args.end() ? param->defaultValue.toPlainText() : given->second;
    if (!(binding.connect ? ops_->connect(binding.object, binding.slot, value, {}, diag)
                          : ops_->setParam(binding.object, binding.slot, value, diag)))
      return false;
  }
  ops_->settle();
  return true;
}

bool Scene::select(const QuindleDocument& document, const std::map<std::string, std::string>& values,
                   PointMask& kept, Diag& diag) {
  std::map<std::string, std::string> args = values;
  if (!checkValues(document, values, diag) || !supplyAll(document, args, diag) ||
      !compileCondition(document, diag) || !bindCondition(document, args, diag))
    return false;
  const Rethold::StrongPtr<Grid> open = grid();
  std::vector<SelectionStep> steps;
  std::string problem;
  if (buildSelection(VManagedObject::find<VObject>(chain_->end), *open, steps, problem) &&
      evaluateSelection(*open->cloud, steps, stop_, kept, problem) && open->warnOfFarPlaces(steps, problem))
    return true;
  diag.error(problem, open->cloud->path());
  return false;
}

} // namespace Zamt::Host
