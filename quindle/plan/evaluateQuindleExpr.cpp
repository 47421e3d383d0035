#include "quindle/plan/evaluateQuindleExpr.h"

#include "quindle/core/Numbers.h"
#include "quindle/core/Refusals.h"
#include "quindle/plan/parameterValue.h"
#include "quindle/plan/unguarded.h"

#include <optional>
#include <utility>
#include <vector>

namespace Zamt {

namespace {

using Kind = QuindleExpr::Kind;
using ValueKind = QuindleValue::Kind;

/// A value that was worked out, or one that lives elsewhere: a literal, a "let" or a default may be large,
/// and to ask whether it is true takes no copy.
class Worked {
public:
  Worked() = default;
  explicit Worked(QuindleValue value) : made_(std::move(value)) {}
  explicit Worked(const QuindleValue* value) : shared_(value) {}

  const QuindleValue& value() const { return shared_ ? *shared_ : made_; }

private:
  QuindleValue made_;
  const QuindleValue* shared_ = nullptr;
};

bool isTrue(const QuindleValue& value) {
  switch (value.kind) {
  case ValueKind::Number: return value.numberValue != 0;
  case ValueKind::Text:
  case ValueKind::Identifier: return !value.textValue.empty();
  case ValueKind::Boolean: return value.boolValue;
  case ValueKind::Tuple: return !value.items.empty();
  case ValueKind::None: break;
  }
  return false;
}

/// What an operator says about two things of which one may be less than the other; nothing for a text that
/// is no operator. `ordered` is false where neither stands before the other and they are not equal either,
/// as with numbers that are none; `==` takes such a pair for equal, `<=` and `>=` do not.
std::optional<bool> holds(const std::string& op, bool less, bool greater, bool ordered) {
  if (op == "<") return less;
  if (op == ">") return greater;
  if (op == "<=") return ordered && !greater;
  if (op == ">=") return ordered && !less;
  if (op == "==") return !less && !greater;
  if (op == "!=") return less || greater;
  return std::nullopt;
}

std::optional<bool> compareNumbers(const std::string& op, double left, double right) {
  return holds(op, left<right, left> right, left <= right || left >= right);
}

bool hasNoText(const QuindleValue& value) {
  return value.kind == ValueKind::Boolean || value.kind == ValueKind::Tuple;
}

std::optional<bool> compareTexts(const std::string& op, const QuindleValue& left, const QuindleValue& right) {
  const bool asSource = hasNoText(left) || hasNoText(right);
  const int order =
      asSource ? left.toSource().compare(right.toSource()) : left.textValue.compare(right.textValue);
  return holds(op, order<0, order> 0, true);
}

class Evaluator {
public:
  Evaluator(const QuindleDocument& document, const std::map<std::string, std::string>& params,
            const std::map<std::string, QuindleValue>& lets, Diag& diag)
      : document_(document), params_(params), lets_(lets), diag_(diag) {}

  /// What the expression is worth, or nothing after a fault.
  std::optional<Worked> evaluate(const QuindleExpr& root) {
    if (!enter(root)) return std::nullopt;
    while (!stack_.empty()) {
      Frame& top = stack_.back();
      if (top.next > 0 && decided(top)) {
        stack_.pop_back();
      } else if (top.next < top.expr->operands.size()) {
        if (!enter(top.expr->operands[top.next++])) return std::nullopt;
      } else if (!finish(*top.expr)) {
        return std::nullopt;
      }
    }
    return std::move(last_);
  }

private:
  /// An operation whose operands are being worked out.
  struct Frame {
    const QuindleExpr* expr;
    std::size_t next;
  };

  bool enter(const QuindleExpr& expr) {
    switch (expr.kind) {
    case Kind::Literal: last_ = Worked(&expr.value); return true;
    case Kind::Reference: return lookUp(expr);
    case Kind::Call: return fault(expr, refusal::needsData(expr.name));
    case Kind::And:
    case Kind::Or: return open(expr, true);
    case Kind::Not: return open(expr, expr.operands.size() == 1);
    case Kind::Compare: return open(expr, expr.operands.size() == 2);
    case Kind::None: break;
    }
    diag_.error("There is nothing to work out here.", document_.sourceFile);
    return false;
  }

  bool open(const QuindleExpr& expr, bool wellFormed) {
    if (wellFormed) stack_.push_back({&expr, 0});
    return wellFormed;
  }

  /// Takes in the operand that was just worked out; true if it alone decides, with the result in `last`.
  bool decided(const Frame& frame) {
    const Kind kind = frame.expr->kind;
    if (kind == Kind::And || kind == Kind::Or) {
      const bool deciding = kind == Kind::Or;
      if (isTrue(last_.value()) != deciding) return false;
      last_ = truth(deciding);
      return true;
    }
    if (kind == Kind::Compare && frame.next == 1) lefts_.push_back(std::move(last_));
    return false;
  }

  /// Ends the operation on top, all of whose operands were taken in.
  bool finish(const QuindleExpr& expr) {
    stack_.pop_back();
    switch (expr.kind) {
    case Kind::And: last_ = truth(true); return true;
    case Kind::Or: last_ = truth(false); return true;
    case Kind::Not: last_ = truth(!isTrue(last_.value())); return true;
    default: return compare(expr);
    }
  }

  bool compare(const QuindleExpr& expr) {
    const Worked left = std::move(lefts_.back());
    lefts_.pop_back();
    const QuindleValue& a = left.value();
    const QuindleValue& b = last_.value();
    const bool numbers = a.kind == ValueKind::Number;
    if (numbers != (b.kind == ValueKind::Number))
      return fault(expr, "A number cannot be compared with something that is not one.");
    const std::optional<bool> result =
        numbers ? compareNumbers(expr.op, a.numberValue, b.numberValue) : compareTexts(expr.op, a, b);
    if (!result) return fault(expr, "\"" + expr.op + "\" is not a comparison.");
    last_ = truth(*result);
    return true;
  }

  bool lookUp(const QuindleExpr& reference) {
    const std::string& name = reference.name;
    if (const auto let = lets_.find(name); let != lets_.end()) {
      last_ = Worked(&let->second);
      return true;
    }
    if (const auto supplied = params_.find(name); supplied != params_.end()) {
      const std::optional<double> number = readWholeNumber(supplied->second);
      last_ = Worked(number ? QuindleValue::number(*number) : QuindleValue::text(supplied->second));
      return true;
    }
    const QuindleParam* const param = document_.findParam(name);
    if (!param) return fault(reference, refusal::noValue(name));
    if (param->defaultValue.kind == ValueKind::None) return fault(reference, noValueFor(name, param));
    last_ = Worked(&param->defaultValue);
    return true;
  }

  static Worked truth(bool value) { return Worked(QuindleValue::boolean(value)); }

  bool fault(const QuindleExpr& where, const std::string& message) {
    diag_.at(Diag::Severity::Error, message, document_.sourceFile, where.line, where.column);
    return false;
  }

  const QuindleDocument& document_;
  const std::map<std::string, std::string>& params_;
  const std::map<std::string, QuindleValue>& lets_;
  Diag& diag_;
  std::vector<Frame> stack_;
  std::vector<Worked> lefts_; ///< Of the comparisons whose right side is being worked out.
  Worked last_;               ///< The value worked out last.
};

} // namespace

bool evaluateQuindleExpr(const QuindleExpr& expression, const QuindleDocument& document,
                         const std::map<std::string, std::string>& params,
                         const std::map<std::string, QuindleValue>& lets, QuindleValue& result, Diag& diag) {
  return guarded(diag, false, [&] {
    const std::optional<Worked> worked = Evaluator(document, params, lets, diag).evaluate(expression);
    if (worked) result = worked->value();
    return worked.has_value();
  });
}

bool Unguarded::evaluateQuindleCondition(const QuindleExpr& expression, const QuindleDocument& document,
                                         const std::map<std::string, std::string>& params,
                                         const std::map<std::string, QuindleValue>& lets, bool& result,
                                         Diag& diag) {
  const std::optional<Worked> worked = Evaluator(document, params, lets, diag).evaluate(expression);
  if (worked) result = isTrue(worked->value());
  return worked.has_value();
}

bool evaluateQuindleCondition(const QuindleExpr& expression, const QuindleDocument& document,
                              const std::map<std::string, std::string>& params,
                              const std::map<std::string, QuindleValue>& lets, bool& result, Diag& diag) {
  return guarded(diag, false, [&] {
    return Unguarded::evaluateQuindleCondition(expression, document, params, lets, result, diag);
  });
}

} // namespace Zamt
