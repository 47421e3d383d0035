#include "quindle/check/advice/parameterAdvice.h"

#include "quindle/check/advice/classAdvice.h"
#include "quindle/check/parameterChecks.h"
#include "quindle/core/NestedSteps.h"
#include "quindle/core/QuindleParamTypes.h"

#include <algorithm>
#include <string>

namespace Zamt {

namespace {

/// The first steps of two kinds, or null.
struct FirstSteps {
  const QuindleStep* classify = nullptr;
  const QuindleStep* run = nullptr;
};

FirstSteps firstStepsOf(const QuindleDocument& doc) {
  FirstSteps first;
  for (const QuindleTrigger& trigger : doc.triggers)
    eachStep(trigger.steps, [&first](const QuindleStep& step) {
      if (!first.classify && step.kind == QuindleStep::Kind::Classify) first.classify = &step;
      if (!first.run && step.kind == QuindleStep::Kind::Run) first.run = &step;
    });
  return first;
}

const QuindleParam* firstOfType(const QuindleDocument& doc, const QuindleParamType& type) {
  const auto found = std::find_if(doc.params.begin(), doc.params.end(),
                                  [&type](const QuindleParam& param) { return param.type == type.word; });
  return found == doc.params.end() ? nullptr : &*found;
}

/// What a "classify into" works on.
const QuindleParam* classifiedParam(const QuindleDocument& doc) {
  const QuindleParam* const field = firstOfType(doc, fieldType);
  return field ? field : firstOfType(doc, gridType);
}

} // namespace

void adviseOnParameters(Advisor& advisor) {
  const QuindleDocument& doc = advisor.document();
  for (const QuindleParam& param : doc.params)
    if (param.type == "Class" && param.defaultValue.kind == QuindleValue::Kind::Text)
      adviseOnClassName(param.defaultValue.textValue, param, advisor);

  const FirstSteps first = firstStepsOf(doc);
  const QuindleParam* const classified = classifiedParam(doc);
  for (const QuindleParam* const param : unreadParameters(doc)) {
    const std::string subject = "The parameter " + inQuotes(param->name);
    if (first.classify && param == classified)
      advisor.note(*param, subject + " is used all the same: the \"classify\" on line " +
                               std::to_string(first.classify->line) + " finds it by its type.");
    else if (first.run && param->defaultSource != QuindleParam::DefaultSource::Written)
      advisor.note(*param, subject + " may be used all the same: the \"run\" on line " +
                               std::to_string(first.run->line) +
                               " hands its value on if the other Quindle has a parameter of that name which "
                               "the application supplies.");
  }
}

} // namespace Zamt
