#include "host/session/checkValues.h"

#include "sorbine/VValue.h"

#include <fmt/format.h>

namespace Zamt::Host {

namespace {

std::string parameterNames(const QuindleDocument& document) {
  std::string names;
  for (const QuindleParam& param : document.params) {
    if (!names.empty()) names += ", ";
    names += param.name;
  }
  return names.empty() ? "no parameters" : names;
}

bool isNumber(const std::string& text, double& value) {
  return VValueTrait<double>::setValueFromText(value, text);
}

/// Whether `text` is a number outside the range that the parameter was declared with.
bool outsideRange(const QuindleParam& param, const std::string& text) {
  double value = 0;
  if (!isNumber(text, value)) return false;
  const auto beyond = [&](const QuindleValue& bound, bool below) {
    return bound.kind == QuindleValue::Kind::Number &&
           (below ? value < bound.numberValue : value > bound.numberValue);
  };
  return beyond(param.minimum, true) || beyond(param.maximum, false);
}

} // namespace

bool checkValues(const QuindleDocument& document, const std::map<std::string, std::string>& values,
                 Diag& diag) {
  const std::uint64_t before = diag.errorCount;
  for (const auto& [name, value] : values) {
    const QuindleParam* const param = document.findParam(name);
    if (!param)
      diag.error(fmt::format("\"{}\" has no parameter called \"{}\". It takes: {}.", document.name, name,
                             parameterNames(document)),
                 document.name);
    else if (double number = 0; param->type == "Number" && !isNumber(value, number))
      diag.error(fmt::format("\"{}\" takes a number, and \"{}\" is none.", name, value), document.name);
    else if (outsideRange(*param, value))
      diag.error(fmt::format("\"{}\" is {}, outside its range from {} to {}.", name, value,
                             param->minimum.toSource(), param->maximum.toSource()),
                 document.name);
  }
  return diag.errorCount == before;
}

} // namespace Zamt::Host
