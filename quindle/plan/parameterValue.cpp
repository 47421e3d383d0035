#include "quindle/plan/parameterValue.h"

namespace Zamt {

std::optional<std::string> parameterValue(const std::string& name, const QuindleParam* param,
                                          const std::map<std::string, std::string>& args) {
  if (const auto supplied = args.find(name); supplied != args.end()) return supplied->second;
  if (!param || param->defaultValue.kind == QuindleValue::Kind::None) return std::nullopt;
  return param->defaultValue.toPlainText();
}

std::string noValueFor(const std::string& name, const QuindleParam* param) {
  if (param && param->defaultSource != QuindleParam::DefaultSource::Written)
    return "The parameter \"" + name +
           "\" takes its value from the application, and none was supplied for this run.";
  return "No value for the parameter \"" + name + "\", and it has no default.";
}

} // namespace Zamt
