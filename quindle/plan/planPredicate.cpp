#include "quindle/plan/QuindlePlanNode.h"

#include "quindle/core/commaList.h"
#include "quindle/plan/combinedCost.h"

#include <algorithm>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

namespace Zamt {

namespace {

using Kind = QuindleExpr::Kind;
using PlanKind = QuindlePlanNode::Kind;

/// What stands for "no limit" in a range of values of a field, and of counts of neighbours.
constexpr double fieldLimit = 1e300;
constexpr double countLimit = 1000000000;

constexpr std::string_view countName = "neighbours";

QuindleExpr literal(QuindleValue value) {
  QuindleExpr made;
  made.kind = Kind::Literal;
  made.value = std::move(value);
  return made;
}

QuindleExpr number(double value) { return literal(QuindleValue::number(value)); }

bool isNumber(const QuindleExpr& expr) {
  return expr.kind == Kind::Literal && expr.value.kind == QuindleValue::Kind::Number;
}

/// Where errors go: a Diag, and the file that they are in. The name is a copy, as the caller's may be that of
/// an entry of the Diag, which moves when one is added.
struct Faults {
  Diag& diag;
  const std::string file;

  /// Reports an error at an expression; false, for the caller to return.
  bool report(const QuindleExpr& where, const std::string& message) const {
    diag.at(Diag::Severity::Error, message, file, where.line, where.column);
    return false;
  }
};

/// The arguments of a call on their way to the places that its condition has for them.
class CallArguments {
public:
  CallArguments(const QuindleExpr& call, const QuindleOperation& operation, const Faults& faults)
      : call_(call),
        operation_(operation),
        faults_(faults),
        arguments_(operation.params.size()),
        given_(operation.params.size(), false) {}

  bool place(std::vector<QuindleExpr>& placed) {
    for (std::size_t i = 0; i < call_.operands.size(); ++i) {
      if (i < call_.argNames.size() && !call_.argNames[i].empty())
        placeNamed(call_.argNames[i], call_.operands[i]);
      else if (!placePositional(call_.operands[i]))
        return false;
    }
    for (std::size_t i = 0; i < arguments_.size(); ++i)
      if (!given_[i]) fillIn(i);
    placed = std::move(arguments_);
    return ok_;
  }

private:
  bool placePositional(const QuindleExpr& operand) {
    if (nextPosition_ >= arguments_.size())
      return fail("\"" + operation_.name + "\" takes at most " + std::to_string(arguments_.size()) +
                  " arguments, but " + std::to_string(call_.operands.size()) + " were given.");
    arguments_[nextPosition_] = operand;
    given_[nextPosition_++] = true;
    return true;
  }

  void placeNamed(const std::string& name, const QuindleExpr& operand) {
    const QuindleOpParam* const param = operation_.findParam(name);
    if (!param) {
      fail("\"" + operation_.name + "\" has no argument called \"" + name +
           "\". It takes: " + commaList(operation_.params, &QuindleOpParam::name) + ".");
      return;
    }
    const auto index = static_cast<std::size_t>(param - operation_.params.data());
    if (given_[index]) {
      fail("The argument \"" + name + "\" of \"" + operation_.name + "\" is given twice.");
      return;
    }
    arguments_[index] = operand;
    given_[index] = true;
  }

  void fillIn(std::size_t index) {
    const QuindleOpParam& param = operation_.params[index];
    if (param.required)
      fail("\"" + operation_.name + "\" needs its \"" + param.name + "\" argument: " + param.help);
    else
      arguments_[index] = literal(param.defaultValue);
  }

  bool fail(const std::string& message) { return ok_ = faults_.report(call_, message); }

  const QuindleExpr& call_;
  const QuindleOperation& operation_;
  const Faults& faults_;
  std::vector<QuindleExpr> arguments_;
  std::vector<bool> given_;
  std::size_t nextPosition_ = 0; ///< Counts positional arguments only.
  bool ok_ = true;
};

bool planCall(const QuindleExpr& call, QuindlePlanNode& node, const Faults& faults) {
  node.operation = findQuindleOperation(call.name);
  if (!node.operation)
    return faults.report(call, "There is no condition called \"" + call.name + "\". The ones there are: " +
                                   commaList(allQuindleOperations(), &QuindleOperation::name) + ".");
  node.line = call.line;
  return CallArguments(call, *node.operation, faults).place(node.arguments);
}

struct Range {
  QuindleExpr minimum;
  QuindleExpr maximum;
};

/// A field's range includes both of its ends, and no end is moved to the next number that can be held, so a
/// strict comparison keeps the bound itself.
Range fieldRange(const std::string& op, const QuindleExpr& bound) {
  if (op == "==") return {bound, bound};
  if (op == "<" || op == "<=") return {number(-fieldLimit), bound};
  return {bound, number(fieldLimit)};
}

/// Counts are whole, so a strict comparison becomes an inclusive range by moving the bound by one. That takes
/// the number itself, which a parameter does not have before the run.
std::optional<Range> countRange(const std::string& op, const QuindleExpr& bound) {
  if (op == "==") return Range{bound, bound};
  if (op == "<=") return Range{number(0), bound};
  if (op == ">=") return Range{bound, number(countLimit)};
  if (!isNumber(bound)) return std::nullopt;
  if (op == "<") return Range{number(0), number(bound.value.numberValue - 1)};
  return Range{number(bound.value.numberValue + 1), number(countLimit)};
}

bool planCount(const QuindleExpr& compare, QuindlePlanNode& node, const Faults& faults) {
  const QuindleExpr& count = compare.operands[0];
  if (count.operands.size() != 1)
    return faults.report(count, "\"neighbours\" needs exactly one argument here, the radius, when it is "
                                "compared against a count.");
  std::optional<Range> range = countRange(compare.op, compare.operands[1]);
  if (!range)
    return faults.report(compare,
                         "A neighbour count compared against a parameter has to use <= or >=: turning "
                         "\"fewer than n\" into a range needs n itself, which is only known when the Quindle "
                         "runs.");
  node.operation = findQuindleOperation(count.name);
  node.line = compare.line;
  node.arguments = {count.operands[0], std::move(range->minimum), std::move(range->maximum)};
  return true;
}

bool planField(const QuindleExpr& compare, QuindlePlanNode& node) {
  Range range = fieldRange(compare.op, compare.operands[1]);
  node.operation = findQuindleOperation("field");
  node.line = compare.line;
  node.arguments = {literal(QuindleValue::text(compare.operands[0].name)), std::move(range.minimum),
                    std::move(range.maximum), number(0)};
  return true;
}

bool planComparison(const QuindleExpr& compare, QuindlePlanNode& node, const Faults& faults) {
  if (compare.operands.size() != 2) return false;
  const QuindleExpr& left = compare.operands[0];
  const QuindleExpr& right = compare.operands[1];
  if (!isNumber(right) && right.kind != Kind::Reference)
    return faults.report(compare,
                         "A comparison here has to end in a number or a parameter. Use expr(\"...\") "
                         "for anything more involved.");
  if (compare.op == "!=")
    return faults.report(compare,
                         "A comparison with != cannot be turned into a range. Write not (... == ...) "
                         "instead.");
  if (left.kind == Kind::Call && left.name == countName) return planCount(compare, node, faults);
  if (left.kind == Kind::Reference || (left.kind == Kind::Call && left.operands.empty()))
    return planField(compare, node);
  return faults.report(compare, "The left of a comparison has to be a field or a count.");
}

bool planCondition(const QuindleExpr& expr, QuindlePlanNode& node, const Faults& faults) {
  switch (expr.kind) {
  case Kind::Call: return planCall(expr, node, faults);
  case Kind::Compare: return planComparison(expr, node, faults);
  case Kind::Reference:
    return faults.report(expr, "\"" + expr.name +
                                   "\" on its own is not a condition. Compare it with something, or call it "
                                   "as a condition.");
  default: return faults.report(expr, "This is not a condition.");
  }
}

/// An expression and whether what stands around it negates it.
struct Signed {
  const QuindleExpr* expr;
  bool negated;
};

/// Strips negations, each turning the sign. Nothing where one has no operand, or several.
std::optional<Signed> withoutNegations(Signed from) {
  while (from.expr->kind == Kind::Not) {
    if (from.expr->operands.size() != 1) return std::nullopt;
    from = {&from.expr->operands.front(), !from.negated};
  }
  return from;
}

/// What a node becomes under its sign, by De Morgan's laws.
PlanKind plannedKind(const Signed& from) {
  if (from.expr->kind == Kind::And) return from.negated ? PlanKind::Or : PlanKind::And;
  if (from.expr->kind == Kind::Or) return from.negated ? PlanKind::And : PlanKind::Or;
  return PlanKind::Condition;
}

struct Costed {
  std::uint32_t cost;
  QuindlePlanNode node;
};

/// A junction whose members are still coming in: those of the expression that opened it, and of all
/// expressions of the same planned kind directly inside. Sorting a nested And before the outer one would
/// give the same order, since the sort is stable, so each is sorted once, when it is whole.
struct Junction {
  PlanKind kind;
  std::int32_t line;
  std::vector<Costed> members;

  Costed close() {
    if (kind == PlanKind::And)
      std::stable_sort(members.begin(), members.end(),
                       [](const Costed& a, const Costed& b) { return a.cost < b.cost; });
    Costed closed{0, {}};
    closed.node.kind = kind;
    closed.node.line = line;
    closed.node.children.reserve(members.size());
    for (Costed& member : members) {
      closed.cost = combinedCost(kind, closed.cost, member.cost);
      closed.node.children.push_back(std::move(member.node));
    }
    return closed;
  }
};

class Planner {
public:
  explicit Planner(const Faults& faults) : faults_(faults) {}

  bool plan(const QuindleExpr& expression, QuindlePlanNode& result) {
    enter({&expression, false});
    while (!stack_.empty()) {
      Frame& top = stack_.back();
      if (top.next < top.expr->operands.size())
        enter({&top.expr->operands[top.next++], top.negated});
      else
        leave();
    }
    result = std::move(root_.node);
    return ok_;
  }

private:
  /// An "and" or "or" whose operands are being planned.
  struct Frame {
    const QuindleExpr* expr;
    bool negated;
    bool opened; ///< A junction of its own, rather than adding to the one around it.
    std::size_t next;
  };

  void enter(const Signed& written) {
    const std::optional<Signed> from = withoutNegations(written);
    if (!from) {
      ok_ = false;
      return;
    }
    const PlanKind kind = plannedKind(*from);
    if (kind == PlanKind::Condition) {
      addCondition(*from);
      return;
    }
    const bool opens = junctions_.empty() || junctions_.back().kind != kind;
    if (opens) junctions_.push_back({kind, from->expr->line, {}});
    stack_.push_back({from->expr, from->negated, opens, 0});
  }

  void leave() {
    const bool opened = stack_.back().opened;
    stack_.pop_back();
    if (!opened) return;
    Costed closed = junctions_.back().close();
    junctions_.pop_back();
    add(std::move(closed));
  }

  void addCondition(const Signed& from) {
    Costed condition{0, {}};
    if (!planCondition(*from.expr, condition.node, faults_)) {
      ok_ = false;
      return;
    }
    condition.node.negated = from.negated;
    condition.cost = condition.node.operation->cost;
    add(std::move(condition));
  }

  void add(Costed&& member) {
    if (junctions_.empty())
      root_ = std::move(member);
    else
      junctions_.back().members.push_back(std::move(member));
  }

  const Faults& faults_;
  std::vector<Frame> stack_;
  std::vector<Junction> junctions_;
  Costed root_{0, {}};
  bool ok_ = true;
};

} // namespace

bool planPredicate(const QuindleExpr& expression, QuindlePlanNode& plan, Diag& diag,
                   const std::string& file) {
  const Faults faults{diag, std::string(file)};
  return Planner(faults).plan(expression, plan);
}

} // namespace Zamt
