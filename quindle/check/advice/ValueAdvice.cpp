#include "quindle/check/advice/ValueAdvice.h"

#include "quindle/core/Refusals.h"
#include "quindle/core/Tree.h"
#include "quindle/plan/unguarded.h"

#include <string>
#include <vector>

namespace Zamt {

namespace {

using Kind = QuindleExpr::Kind;

const std::vector<QuindleExpr>& noOperands() {
  static const std::vector<QuindleExpr> none;
  return none;
}

/// A call is refused as a whole.
const std::vector<QuindleExpr>& outsideCalls(const QuindleExpr& expr) {
  return expr.kind == Kind::Call ? noOperands() : expr.operands;
}

/// Of what an expression asks only whether it is true.
const std::vector<QuindleExpr>& truthsIn(const QuindleExpr& expr) {
  const bool asks = expr.kind == Kind::And || expr.kind == Kind::Or || expr.kind == Kind::Not;
  return asks ? expr.operands : noOperands();
}

/// Values of these types come as texts that need not read as numbers.
bool holdsText(const QuindleParam& param) {
  const QuindleValue::Kind kind = param.defaultValue.kind;
  if (kind == QuindleValue::Kind::None)
    return param.type == "Text" || param.type == "Class" || param.type == "File" || param.type == "Surface";
  return kind == QuindleValue::Kind::Text || kind == QuindleValue::Kind::Identifier ||
         kind == QuindleValue::Kind::Boolean;
}

/// The value, if literals alone decide it.
std::optional<bool> decidedByLiterals(const QuindleExpr& condition) {
  bool value = false;
  Diag undecided;
  if (!Unguarded::evaluateQuindleCondition(condition, {}, {}, {}, value, undecided)) return std::nullopt;
  return value;
}

} // namespace

void ValueAdvice::let(const QuindleStep& step) {
  adviseOnWords(step.value);
  names_[step.name] = isText(step.value);
}

void ValueAdvice::run(const QuindleStep& step) {
  for (const QuindleExpr& argument : step.args) adviseOnWords(argument);
}

std::optional<bool> ValueAdvice::decide(const QuindleStep& step) {
  adviseOnWords(step.condition);
  adviseOnTruth(step.condition);
  const std::optional<bool> decided = decidedByLiterals(step.condition);
  if (!decided) return decided;
  const bool losesSteps = *decided ? !step.elseBody.empty() : !step.body.empty();
  if (losesSteps && !isText(step.condition))
    advisor_.warn(step, std::string("This \"if\" is always ") + (*decided ? "true" : "false") +
                            ", so the steps in its " + (*decided ? "\"else\"" : "block") +
                            " are never reached. Write a parameter into the condition, or take those steps "
                            "away.");
  return decided;
}

void ValueAdvice::adviseOnWords(const QuindleExpr& value) {
  if (value.kind == Kind::None) return;
  tree::each(value, outsideCalls, [this](const QuindleExpr& expr) {
    if (expr.kind == Kind::Call)
      advisor_.warn(expr, refusal::needsData(expr.name));
    else if (expr.kind == Kind::Reference && !advisor_.findParam(expr.name) && !isNamed(expr.name))
      advisor_.warn(expr, refusal::noValue(expr.name));
  });
}

void ValueAdvice::adviseOnTruth(const QuindleExpr& condition) {
  tree::each(condition, truthsIn, [this](const QuindleExpr& expr) {
    if (!isText(expr)) return;
    const bool isWritten = expr.kind == Kind::Literal;
    advisor_.warn(expr, (isWritten ? expr.toSource() : inQuotes(expr.name)) +
                            " is a text, and every text that is not empty is true, \"false\" and \"no\" too. "
                            "Write " +
                            (isWritten ? std::string("true, false or a comparison.")
                                       : "a comparison, as in " + expr.name + " == \"yes\"."));
  });
}

bool ValueAdvice::isText(const QuindleExpr& value) const {
  if (value.kind == Kind::Literal) return value.value.kind == QuindleValue::Kind::Text;
  if (value.kind != Kind::Reference) return false;
  if (const auto named = names_.find(value.name); named != names_.end()) return named->second;
  const QuindleParam* const param = advisor_.findParam(value.name);
  return param && holdsText(*param);
}

} // namespace Zamt
