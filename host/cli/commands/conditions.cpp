#include "host/cli/commands/commands.h"
#include "host/session/nearest.h"
#include "quindle/plan/QuindleOperation.h"

#include <CLI/App.hpp>
#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include <memory>
#include <string>
#include <vector>

namespace Zamt::Host {

namespace {

struct ConditionsOptions {
  std::string name;
  bool json = false;
};

std::string unknownCondition(const std::string& name) {
  std::vector<std::string> names;
  for (const QuindleOperation& operation : allQuindleOperations()) names.push_back(operation.name);
  return fmt::format(
      "There is no condition called \"{}\".{} \"quindle conditions\" without a name lists them all.", name,
      didYouMean(name, names));
}

nlohmann::json argumentJson(const QuindleOpParam& param) {
  nlohmann::json json = {
      {"name", param.name}, {"required", param.required}, {"default", nullptr}, {"help", param.help}};
  if (param.defaultValue.kind != QuindleValue::Kind::None) json["default"] = param.defaultValue.toSource();
  return json;
}

nlohmann::json conditionJson(const QuindleOperation& operation) {
  nlohmann::json arguments = nlohmann::json::array();
  for (const QuindleOpParam& param : operation.params) arguments.push_back(argumentJson(param));
  return {{"name", operation.name}, {"summary", operation.summary}, {"description", operation.description},
          {"cost", operation.cost}, {"creator", operation.creator}, {"arguments", arguments}};
}

Exit showConditions(const ConditionsOptions& options, Console& console) {
  Diag diag;
  if (!options.name.empty() && findQuindleOperation(options.name) == nullptr)
    diag.error(unknownCondition(options.name));
  if (options.json) {
    nlohmann::json list = nlohmann::json::array();
    for (const QuindleOperation& operation : allQuindleOperations())
      if (options.name.empty() || options.name == operation.name) list.push_back(conditionJson(operation));
    console.printJson({{"conditions", list}, {"diagnostics", diagnosticsJson(diag)}});
  } else {
    console.report(diag);
    console.print(options.name.empty() ? listQuindleOperations({}) : describeQuindleOperation(options.name));
  }
  return diag.errorCount == 0 ? Exit::Done : Exit::Failed;
}

} // namespace

void addConditionsCommand(CLI::App& app, Session& session) {
  auto options = std::make_shared<ConditionsOptions>();
  CLI::App* verb =
      addVerb(app, "conditions",
              "List the conditions, or show the page on one. They are what a \"select\" can ask of points.");
  verb->add_option("NAME", options->name, "The condition to show.");
  verb->add_flag("--json", options->json,
                 "Print JSON: \"conditions\" with name, summary, description, cost, creator and arguments "
                 "(name, required, default, help) of each, and \"diagnostics\".");
  verb->footer("Example:\n  quindle conditions neighbours");
  verb->callback([options, &session] { session.exit = showConditions(*options, session.console); });
}

} // namespace Zamt::Host
