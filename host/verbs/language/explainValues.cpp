#include "host/verbs/language/explainValues.h"

#include "quindle/plan/QuindleOperation.h"

#include <fmt/format.h>

namespace Zamt::Host {

namespace {

using Source = QuindleParam::DefaultSource;

ExplainedValue explainValue(const QuindleParam& param, const std::map<std::string, std::string>& settings) {
  const auto set = settings.find(param.name);
  if (set != settings.end()) return {param.name, set->second, param.help, true, false};
  const bool written = param.defaultSource == Source::Written;
  return {param.name, written ? param.defaultValue.toPlainText() : std::string(), param.help, false,
          !written};
}

ExplainedCondition explainCondition(const QuindlePlanNode& node, const QuindleDocument& document,
                                    const std::map<std::string, std::string>& settings) {
  ExplainedCondition condition{node.line, node.describe(), {}};
  for (std::size_t i = 0; i < node.arguments.size(); ++i) {
    const QuindleExpr& argument = node.arguments[i];
    if (argument.kind != QuindleExpr::Kind::Reference) continue;
    if (const QuindleParam* const param = document.findParam(argument.name))
      condition.arguments.push_back({node.operation->params[i].name, explainValue(*param, settings)});
  }
  return condition;
}

std::string valueText(const ExplainedValue& value) {
  std::string text = value.supplied        ? "what the application supplies"
                     : value.value.empty() ? "nothing yet"
                                           : value.value;
  if (value.set) text += " (set)";
  return value.help.empty() ? text : text + "  -  " + value.help;
}

Data valueData(const ExplainedValue& value) {
  return Fields{{"name", value.name},
                {"value", value.value},
                {"set", value.set},
                {"supplied", value.supplied},
                {"help", value.help}};
}

Data argumentData(const ExplainedArgument& argument) {
  return Fields{{"name", argument.name}, {"parameter", valueData(argument.value)}};
}

Data conditionData(const ExplainedCondition& condition) {
  return Fields{{"line", condition.line},
                {"text", condition.text},
                {"arguments", Data::list(condition.arguments, argumentData)}};
}

} // namespace

ExplainedValues explainValues(const QuindleDocument& document,
                              const std::map<std::string, std::string>& settings,
                              const std::vector<QuindlePlannedSelect>& selects) {
  ExplainedValues explained;
  for (const QuindleParam& param : document.params) explained.values.push_back(explainValue(param, settings));
  for (const QuindlePlannedSelect& select : selects)
    if (select.good)
      for (const QuindlePlanLine& line : quindlePlanLines(select.plan))
        if (line.node->kind == QuindlePlanNode::Kind::Condition)
          explained.conditions.push_back(explainCondition(*line.node, document, settings));
  return explained;
}

std::string explainedText(const ExplainedValues& explained) {
  std::string text = "\nWith these values:\n";
  for (const ExplainedValue& value : explained.values)
    text += fmt::format("  {} = {}\n", value.name, valueText(value));
  if (explained.values.empty()) text += "  It takes none.\n";
  if (!explained.conditions.empty()) text += "\nThe conditions, in the order in which they run:\n";
  for (const ExplainedCondition& condition : explained.conditions) {
    text += fmt::format("  line {}: {}\n", condition.line, condition.text);
    for (const auto& [name, value] : condition.arguments)
      text += fmt::format("    {} = {}\n", name, valueText(value));
  }
  return text;
}

Fields explainedData(const ExplainedValues& explained) {
  return {{"values", Data::list(explained.values, valueData)},
          {"conditions", Data::list(explained.conditions, conditionData)}};
}

} // namespace Zamt::Host
