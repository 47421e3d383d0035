#pragma once

#include "host/verbs/Data.h"
#include "quindle/core/QuindleDocument.h"
#include "quindle/plan/planQuindle.h"

#include <map>
#include <string>
#include <vector>

namespace Zamt::Host {

/// A parameter and the value that it has in a run with the settings of a user.
struct ExplainedValue {
  std::string name;
  std::string value;     ///< Empty where there is none yet.
  std::string help;      ///< As it is written in the Quindle.
  bool set = false;      ///< By the user.
  bool supplied = false; ///< The application is to give it one at each run.
};

/// An argument of a planned condition that is a parameter.
struct ExplainedArgument {
  std::string name; ///< Of the argument.
  ExplainedValue value;
};

/// A condition as planned, and those of its arguments that are parameters.
struct ExplainedCondition {
  std::int32_t line = 0;
  std::string text;
  std::vector<ExplainedArgument> arguments;
};

/// What the settings make of a Quindle.
struct ExplainedValues {
  std::vector<ExplainedValue> values;         ///< Of all parameters, in their order.
  std::vector<ExplainedCondition> conditions; ///< In the order in which they run.
};

ExplainedValues explainValues(const QuindleDocument& document,
                              const std::map<std::string, std::string>& settings,
                              const std::vector<QuindlePlannedSelect>& selects);

/// Two lists: the values, and the conditions with theirs.
std::string explainedText(const ExplainedValues& explained);

/// The fields "values" and "conditions".
Fields explainedData(const ExplainedValues& explained);

} // namespace Zamt::Host
