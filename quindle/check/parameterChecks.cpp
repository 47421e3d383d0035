#include "quindle/check/parameterChecks.h"

#include "quindle/check/usedNames.h"
#include "quindle/core/QuindleParamTypes.h"

#include <algorithm>
#include <string>

namespace Zamt {

namespace {

bool isNumber(const QuindleValue& value) { return value.kind == QuindleValue::Kind::Number; }

/// Only numbers compare; anything else is in nobody's way.
bool isLess(const QuindleValue& left, const QuindleValue& right) {
  return isNumber(left) && isNumber(right) && left.numberValue < right.numberValue;
}

std::string inQuotes(const std::string& name) { return '"' + name + '"'; }

void checkDefault(const QuindleParam& param, Findings& findings) {
  if (param.defaultSource != QuindleParam::DefaultSource::Written) return;
  const std::string subject =
      "The default of " + inQuotes(param.name) + " is " + param.defaultValue.toSource();
  if (isLess(param.defaultValue, param.minimum))
    findings.error(subject + ", below its own minimum of " + param.minimum.toSource() + '.', param.line);
  else if (isLess(param.maximum, param.defaultValue))
    findings.error(subject + ", above its own maximum of " + param.maximum.toSource() + '.', param.line);
}

void checkParameter(const QuindleParam& param, Findings& findings) {
  if (isLess(param.maximum, param.minimum))
    findings.error("The range of " + inQuotes(param.name) + " runs from " + param.minimum.toSource() +
                       " down to " + param.maximum.toSource() + ", so no value can ever satisfy it.",
                   param.line);
  checkDefault(param, findings);
  if (param.help.empty())
    findings.warning("The parameter " + inQuotes(param.name) +
                         " has no description. The block editor, the completion and the AI all show that "
                         "text, so a parameter without one is hard for anybody to use.",
                     param.line);
}

/// Whether a trigger itself changes data. A change inside an "if" or a loop finds no parameter by its type.
bool changesData(const QuindleTrigger& trigger) {
  return std::any_of(trigger.steps.begin(), trigger.steps.end(), [](const QuindleStep& step) {
    return step.kind == QuindleStep::Kind::Classify || step.kind == QuindleStep::Kind::Unparsed;
  });
}

/// What a change of the data works on is found by its type, without being named.
bool isFoundByType(const QuindleParam& param) {
  const QuindleParamType* const type = findQuindleParamType(param.type);
  return type && type->isData;
}

} // namespace

std::vector<const QuindleParam*> unreadParameters(const QuindleDocument& doc) {
  std::vector<const QuindleParam*> unread;
  if (doc.params.empty()) return unread;
  const std::set<std::string_view> used = usedNames(doc);
  const bool changes = std::any_of(doc.triggers.begin(), doc.triggers.end(), changesData);
  for (const QuindleParam& param : doc.params)
    if (!used.contains(param.name) && !(changes && isFoundByType(param))) unread.push_back(&param);
  return unread;
}

void checkParameters(const QuindleDocument& doc, Findings& findings) {
  for (const QuindleParam& param : doc.params) checkParameter(param, findings);
  for (const QuindleParam* const param : unreadParameters(doc))
    findings.warning("Nothing uses the parameter " + inQuotes(param->name) +
                         ". It will be asked for and then ignored.",
                     param->line);
}

} // namespace Zamt
