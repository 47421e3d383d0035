#include "quindle/plan/evaluateQuindleExpr.h"

#include "quindle/core/Numbers.h"

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
  explicit Worked(QuindleValue value) : made(std::move(value)) {}
  explicit Worked(const QuindleValue* value) : shared(value) {}

  const QuindleValue& value() const { return shared ? *shared : made; }

private:
  QuindleValue made;
  const QuindleValue* shared = nullptr;
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
  Evaluator(const QuindleDocument& ofDocument, const std::map<std::string, std::string>& supplied,
            const std::map<std::string, QuindleValue>& earlierLets, Diag& toDiag)
      : document(ofDocument), params(supplied), lets(earlierLets), diag(toDiag) {}

  /// What the expression is worth, or nothing after a fault.
  std::optional<Worked> evaluate(const QuindleExpr& root) {
    if (!enter(root)) return std::nullopt;
    while (!stack.empty()) {
      Frame& top = stack.back();
      if (top.next > 0 && decided(top)) {
        stack.pop_back();
      } else if (top.next < top.expr->operands.size()) {
        if (!enter(top.expr->operands[top.next++])) return std::nullopt;
      } else if (!finish(*top.expr)) {
        return std::nullopt;
      }
    }
    return std::move(last);
  }

private:
  /// An operation whose operands are being worked out.
  struct Frame {
    const QuindleExpr* expr;
    std::size_t next;
  };

  bool enter(const QuindleExpr& expr) {
    switch (expr.kind) {
    case Kind::Literal: last = Worked(&expr.value); return true;
    case Kind::Reference: return lookUp(expr);
    case Kind::Call:
      return fault(expr,
                   "\"" + expr.name +
                       "\" cannot be worked out here: a \"let\" or an \"if\" is decided before the data "
                       "is touched, and this needs the data.");
    case Kind::And:
    case Kind::Or: return open(expr, true);
    case Kind::Not: return open(expr, expr.operands.size() == 1);
    case Kind::Compare: return open(expr, expr.operands.size() == 2);
    case Kind::None: break;
    }
    diag.error("There is nothing to work out here.", document.sourceFile);
    return false;
  }

  bool open(const QuindleExpr& expr, bool wellFormed) {
    if (wellFormed) stack.push_back({&expr, 0});
    return wellFormed;
  }

  /// Takes in the operand that was just worked out; true if it alone decides, with the result in `last`.
  bool decided(const Frame& frame) {
    const Kind kind = frame.expr->kind;
    if (kind == Kind::And || kind == Kind::Or) {
      const bool deciding = kind == Kind::Or;
      if (isTrue(last.value()) != deciding) return false;
      last = truth(deciding);
      return true;
    }
    if (kind == Kind::Compare && frame.next == 1) lefts.push_back(std::move(last));
    return false;
  }

  /// Ends the operation on top, all of whose operands were taken in.
  bool finish(const QuindleExpr& expr) {
    stack.pop_back();
    switch (expr.kind) {
    case Kind::And: last = truth(true); return true;
    case Kind::Or: last = truth(false); return true;
    case Kind::Not: last = truth(!isTrue(last.value())); return true;
    default: return compare(expr);
    }
  }

  bool compare(const QuindleExpr& expr) {
    const Worked left = std::move(lefts.back());
    lefts.pop_back();
    const QuindleValue& a = left.value();
    const QuindleValue& b = last.value();
    const bool numbers = a.kind == ValueKind::Number;
    if (numbers != (b.kind == ValueKind::Number))
      return fault(expr, "A number cannot be compared with something that is not one.");
    const std::optional<bool> result =
        numbers ? compareNumbers(expr.op, a.numberValue, b.numberValue) : compareTexts(expr.op, a, b);
    if (!result) return fault(expr, "\"" + expr.op + "\" is not a comparison.");
    last = truth(*result);
    return true;
  }

  bool lookUp(const QuindleExpr& reference) {
    const std::string& name = reference.name;
    if (const auto let = lets.find(name); let != lets.end()) {
      last = Worked(&let->second);
      return true;
    }
    if (const auto supplied = params.find(name); supplied != params.end()) {
      const std::optional<double> number = readWholeNumber(supplied->second);
      last = Worked(number ? QuindleValue::number(*number) : QuindleValue::text(supplied->second));
      return true;
    }
    const QuindleParam* const param = document.findParam(name);
    if (!param)
      return fault(reference,
                   "\"" + name +
                       "\" has no value here. It is neither a parameter of this Quindle nor set by "
                       "an earlier \"let\".");
    if (param->defaultValue.kind != ValueKind::None) {
      last = Worked(&param->defaultValue);
      return true;
    }
    if (param->defaultSource != QuindleParam::DefaultSource::Written)
      return fault(reference, "The parameter \"" + name +
                                  "\" takes its value from the application, and none was supplied for this "
                                  "run.");
    return fault(reference, "No value for the parameter \"" + name + "\", and it has no default.");
  }

  static Worked truth(bool value) { return Worked(QuindleValue::boolean(value)); }

  bool fault(const QuindleExpr& where, const std::string& message) {
    diag.at(Diag::Severity::Error, message, document.sourceFile, where.line, where.column);
    return false;
  }

  const QuindleDocument& document;
  const std::map<std::string, std::string>& params;
  const std::map<std::string, QuindleValue>& lets;
  Diag& diag;
  std::vector<Frame> stack;
  std::vector<Worked> lefts; // of the comparisons whose right side is being worked out
  Worked last;               // the value worked out last
};

} // namespace

bool evaluateQuindleExpr(const QuindleExpr& expression, const QuindleDocument& document,
                         const std::map<std::string, std::string>& params,
                         const std::map<std::string, QuindleValue>& lets, QuindleValue& result, Diag& diag) {
  const std::optional<Worked> worked = Evaluator(document, params, lets, diag).evaluate(expression);
  if (worked) result = worked->value();
  return worked.has_value();
}

bool evaluateQuindleCondition(const QuindleExpr& expression, const QuindleDocument& document,
                              const std::map<std::string, std::string>& params,
                              const std::map<std::string, QuindleValue>& lets, bool& result, Diag& diag) {
  const std::optional<Worked> worked = Evaluator(document, params, lets, diag).evaluate(expression);
  if (worked) result = isTrue(worked->value());
  return worked.has_value();
}

} // namespace Zamt
