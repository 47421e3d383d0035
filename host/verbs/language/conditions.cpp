#include "host/session/nearest.h"
#include "host/verbs/options.h"
#include "host/verbs/verbs.h"
#include "quindle/plan/QuindleOperation.h"

#include <fmt/format.h>

#include <string>
#include <vector>

namespace Zamt::Host {

namespace {

std::vector<std::string> conditionNames() {
  std::vector<std::string> names;
  for (const QuindleOperation& operation : allQuindleOperations()) names.push_back(operation.name);
  return names;
}

std::string unknownCondition(const std::string& name) {
  return fmt::format(
      "There is no condition called \"{}\".{} \"quindle conditions\" without a name lists them all.", name,
      didYouMean(name, conditionNames()));
}

Data argumentData(const QuindleOpParam& param) {
  const bool hasDefault = param.defaultValue.kind != QuindleValue::Kind::None;
  return Fields{{"name", param.name},
                {"required", param.required},
                {"default", hasDefault ? Data(param.defaultValue.toSource()) : Data()},
                {"help", param.help}};
}

Data conditionData(const QuindleOperation& operation) {
  return Fields{{"name", operation.name},
                {"summary", operation.summary},
                {"description", operation.description},
                {"cost", operation.cost},
                {"creator", operation.creator},
                {"arguments", Data::list(operation.params, argumentData)}};
}

/// Of the one of that name, or of all if it is empty.
Data conditionsData(const std::string& name) {
  Data::List list;
  for (const QuindleOperation& operation : allQuindleOperations())
    if (name.empty() || name == operation.name) list.push_back(conditionData(operation));
  return Fields{{"conditions", list}};
}

std::string conditionsText(const std::string& name) {
  return name.empty() ? listQuindleOperations({}) : describeQuindleOperation(name);
}

Answer conditions(const Request& request, const Context& /*context*/) {
  const std::string& name = request.text("name");
  Diag diag;
  if (!name.empty() && findQuindleOperation(name) == nullptr) diag.error(unknownCondition(name));
  return answerOf(partOf(std::move(diag), name, conditionsText, conditionsData));
}

} // namespace

Verb conditionsVerb() {
  return {
      .name = "conditions",
      .summary =
          "List the conditions, or show the page on one. They are what a \"select\" can ask of points.",
      .footer = "Example:\n  quindle conditions neighbours",
      .options = {{.name = "name",
                   .help = "The condition to show.",
                   .placeholder = "NAME",
                   .argument = true,
                   .names = Option::Names::Choice,
                   .choices = conditionNames()},
                  jsonOption("Print JSON: \"conditions\" with name, summary, description, cost, creator and "
                             "arguments (name, required, default, help) of each, and \"diagnostics\".")},
      .run = conditions};
}

} // namespace Zamt::Host
