#include "quindle/check/advice/conditionAdvice.h"

#include "quindle/check/advice/classAdvice.h"
#include "quindle/check/advice/comparisonAdvice.h"
#include "quindle/check/advice/expressionTextAdvice.h"
#include "quindle/check/advice/fieldAdvice.h"
#include "quindle/check/advice/rangeAdvice.h"
#include "quindle/core/ClassList.h"
#include "quindle/core/Refusals.h"
#include "quindle/core/Tree.h"
#include "quindle/plan/unguarded.h"

#include <string>
#include <utility>

namespace Zamt {

namespace {

using Kind = QuindleExpr::Kind;

const std::vector<QuindleExpr>& membersOf(const QuindleExpr& expr) {
  static const std::vector<QuindleExpr> none;
  const bool joins = expr.kind == Kind::And || expr.kind == Kind::Or || expr.kind == Kind::Not;
  return joins ? expr.operands : none;
}

bool isNumber(const QuindleExpr& expr) {
  return expr.kind == Kind::Literal && expr.value.kind == QuindleValue::Kind::Number;
}

/// What stands around a part of a condition makes of it.
struct Standing {
  bool negated = false;
  bool required = true; ///< Every point that is kept has to meet it, or not to meet it if it is negated.

  Standing within(Kind around) const {
    if (around == Kind::Not) return {!negated, required};
    const bool joinsByAnd = (around == Kind::And) != negated;
    return {negated, required && joinsByAnd};
  }
};

class ConditionAdvice {
public:
  explicit ConditionAdvice(Advisor& advisor) : advisor_(advisor) {}

  std::optional<SelectedPoints> advise(const QuindleExpr& condition) {
    std::vector<Standing> standings;
    tree::each(
        condition, membersOf,
        [&](const QuindleExpr& expr, const tree::Place<QuindleExpr>& place) {
          standings.push_back(place.parent ? standings.back().within(place.parent->kind) : Standing());
          enter(expr, standings.back());
        },
        [&](const QuindleExpr& /*expr*/) { standings.pop_back(); });
    if (!sound_) return std::nullopt;
    return std::move(points_);
  }

private:
  void enter(const QuindleExpr& expr, const Standing& standing) {
    if (expr.kind == Kind::Not) return;
    if (membersOf(expr).empty()) {
      adviseOnLeaf(expr, standing);
    } else if (standing.required && !standing.within(expr.kind).required) {
      points_.conditions.add(sourceOf(expr, standing));
    }
  }

  void adviseOnLeaf(const QuindleExpr& expr, const Standing& standing) {
    QuindlePlanNode plan;
    Diag faults;
    if (!Unguarded::planPredicate(expr, plan, faults, {})) {
      for (const Diag::Entry& fault : faults.entries) advisor_.warn(fault, fault.message);
      sound_ = false;
      return;
    }
    if (!plan.operation) return; // an "and" or "or" of nothing, which no text can hold
    adviseOnArguments(expr, plan);
    adviseOnComparison(expr, advisor_);
    adviseOnFields(expr, plan, advisor_);
    adviseOnRange(expr, plan, advisor_);
    adviseOnTexts(plan);
    if (standing.required) keep(expr, plan, standing);
  }

  /// What only a parameter or a value can be.
  void adviseOnArguments(const QuindleExpr& expr, const QuindlePlanNode& plan) {
    for (std::size_t i = 0; i < plan.arguments.size(); ++i) {
      const QuindleExpr& argument = plan.arguments[i];
      if (argument.kind == Kind::Literal) continue;
      if (argument.kind == Kind::Reference && advisor_.findParam(argument.name)) continue;
      sound_ = false;
      if (argument.kind == Kind::Reference)
        advisor_.warn(argument, refusal::notAParameter(argument.name));
      else
        advisor_.warn(expr, refusal::argumentNotWorkedOut(plan.operation->params[i].name,
                                                          plan.operation->name, argument.toSource()));
    }
  }

  void adviseOnTexts(const QuindlePlanNode& plan) {
    const QuindleExpr& first = plan.arguments.front();
    const std::optional<std::string_view> text = advisor_.knownText(first);
    if (!text) return;
    if (plan.operation->name == "expr") adviseOnExpressionText(*text, first, advisor_);
    if (plan.operation->name == "class" && !isClassParam(first))
      for (const std::string_view name : classesIn(*text)) adviseOnClassName(name, first, advisor_);
  }

  /// Its default is looked at where it stands.
  bool isClassParam(const QuindleExpr& argument) const {
    const QuindleParam* const param =
        argument.kind == Kind::Reference ? advisor_.findParam(argument.name) : nullptr;
    return param && param->type == "Class";
  }

  void keep(const QuindleExpr& expr, const QuindlePlanNode& plan, const Standing& standing) {
    if (standing.negated)
      points_.conditions.add(sourceOf(expr, standing));
    else if (plan.operation->name == "class")
      keepClasses(plan);
    else if (plan.operation->name == "field")
      keepRange(expr, plan, "field " + plan.arguments[0].toSource() + ' ' + plan.arguments[3].toSource(), 1);
    else if (plan.operation->name == "neighbours")
      keepRange(expr, plan, "neighbours " + plan.arguments[0].toSource(), 1);
    else
      points_.conditions.add(plan.describe());
  }

  void keepClasses(const QuindlePlanNode& plan) {
    if (plan.arguments[0].kind != Kind::Literal) {
      points_.conditions.add(plan.describe());
      return;
    }
    const std::vector<std::string_view> classes = classesIn(plan.arguments[0].value.textValue);
    points_.conditions.addClasses(plan.arguments[1].toSource(), classes);
    points_.classes.insert(points_.classes.end(), classes.begin(), classes.end());
  }

  /// A range of `subject` whose ends are the two arguments from `first` on.
  void keepRange(const QuindleExpr& expr, const QuindlePlanNode& plan, const std::string& subject,
                 std::size_t first) {
    const QuindleExpr& minimum = plan.arguments[first];
    const QuindleExpr& maximum = plan.arguments[first + 1];
    if (!isNumber(minimum) || !isNumber(maximum)) {
      points_.conditions.add(plan.describe());
      return;
    }
    if (points_.conditions.addRange(subject, minimum.value.numberValue, maximum.value.numberValue)) return;
    advisor_.warn(expr, expr.toSource() + " contradicts another condition of this \"select\", so "
                                          "no point can meet both. Write \"or\" between them, or "
                                          "other limits.");
  }

  static std::string sourceOf(const QuindleExpr& expr, const Standing& standing) {
    return (standing.negated ? "not " : "") + expr.toSource();
  }

  Advisor& advisor_;
  SelectedPoints points_;
  bool sound_ = true;
};

} // namespace

std::optional<SelectedPoints> adviseOnCondition(const QuindleExpr& condition, Advisor& advisor) {
  return ConditionAdvice(advisor).advise(condition);
}

} // namespace Zamt
