#include "quindle/core/QuindleDocument.h"

#include "quindle/core/AsciiText.h"
#include "quindle/core/Numbers.h"
#include "quindle/core/Tree.h"

#include <algorithm>
#include <span>

namespace Zamt {

namespace {

std::string quoted(const std::string& text) {
  std::string out = "\"";
  for (const char c : text) {
    switch (c) {
    case '"': out += "\\\""; break;
    case '\\': out += "\\\\"; break;
    case '\n': out += "\\n"; break;
    case '\t': out += "\\t"; break;
    default: out += c;
    }
  }
  return out += '"';
}

std::string leafSource(const QuindleValue& value) {
  switch (value.kind) {
  case QuindleValue::Kind::Number:
    return value.textValue.empty() ? printNumber(value.numberValue) : value.textValue;
  case QuindleValue::Kind::Text: return quoted(value.textValue);
  case QuindleValue::Kind::Boolean: return value.boolValue ? "true" : "false";
  case QuindleValue::Kind::Identifier: return value.textValue;
  case QuindleValue::Kind::None:
  case QuindleValue::Kind::Tuple: break;
  }
  return {};
}

using Kind = QuindleExpr::Kind;

// The operand of a comparison is an atom in the grammar, so one that is not can only have stood in
// parentheses, and needs them to be read back as the same tree.
bool needsParentheses(const QuindleExpr& operand, const QuindleExpr* enclosing) {
  if (!enclosing) return false;
  const Kind inner = operand.kind;
  switch (enclosing->kind) {
  case Kind::And: return inner == Kind::Or;
  case Kind::Not: return inner == Kind::Or || inner == Kind::And || inner == Kind::Compare;
  case Kind::Compare:
    return inner == Kind::Or || inner == Kind::And || inner == Kind::Not || inner == Kind::Compare;
  default: return false;
  }
}

/// The operands that are printed: all of them, but for a comparison without two sides, which prints as
/// nothing, and for a negation, which prints one.
std::size_t printedOperands(const QuindleExpr& expr) {
  switch (expr.kind) {
  case Kind::Call:
  case Kind::And:
  case Kind::Or: return expr.operands.size();
  case Kind::Not: return std::min<std::size_t>(expr.operands.size(), 1);
  case Kind::Compare: return expr.operands.size() < 2 ? 0 : 2;
  default: return 0;
  }
}

void printBefore(const QuindleExpr& expr, std::string& out) {
  switch (expr.kind) {
  case Kind::Literal: out += expr.value.toSource(); break;
  case Kind::Reference: out += expr.name; break;
  case Kind::Call: out += expr.name + '('; break;
  case Kind::Not: out += expr.operands.empty() ? "not" : "not "; break;
  default: break;
  }
}

/// What stands in front of an operand, behind the one before it.
void printBetween(const tree::Place<QuindleExpr>& place, std::string& out) {
  if (!place.parent) return;
  const QuindleExpr& around = *place.parent;
  if (place.index > 0) {
    switch (around.kind) {
    case Kind::Call: out += ", "; break;
    case Kind::And: out += " and "; break;
    case Kind::Or: out += " or "; break;
    case Kind::Compare: out += ' ' + around.op + ' '; break;
    default: break;
    }
  }
  if (around.kind == Kind::Call && place.index < around.argNames.size() &&
      !around.argNames[place.index].empty())
    out += around.argNames[place.index] + ": ";
}

} // namespace

QuindleValue::QuindleValue(const QuindleValue& other) { tree::copy(other, *this); }

QuindleValue& QuindleValue::operator=(const QuindleValue& other) { return *this = QuindleValue(other); }

QuindleValue& QuindleValue::operator=(QuindleValue&& other) noexcept {
  tree::move(other, *this);
  return *this;
}

QuindleValue::~QuindleValue() {
  if (tree::hasChildren(*this)) tree::destroyChildren(*this);
}

QuindleExpr::QuindleExpr(const QuindleExpr& other) { tree::copy(other, *this); }

QuindleExpr& QuindleExpr::operator=(const QuindleExpr& other) { return *this = QuindleExpr(other); }

QuindleExpr& QuindleExpr::operator=(QuindleExpr&& other) noexcept {
  tree::move(other, *this);
  return *this;
}

QuindleExpr::~QuindleExpr() {
  if (tree::hasChildren(*this)) tree::destroyChildren(*this);
}

QuindleStep::QuindleStep(const QuindleStep& other) { tree::copy(other, *this); }

QuindleStep& QuindleStep::operator=(const QuindleStep& other) { return *this = QuindleStep(other); }

QuindleStep& QuindleStep::operator=(QuindleStep&& other) noexcept {
  tree::move(other, *this);
  return *this;
}

QuindleStep::~QuindleStep() {
  if (tree::hasChildren(*this)) tree::destroyChildren(*this);
}

QuindleValue QuindleValue::number(double value) {
  QuindleValue made;
  made.kind = Kind::Number;
  made.numberValue = value;
  return made;
}

QuindleValue QuindleValue::text(const std::string& value) {
  QuindleValue made;
  made.kind = Kind::Text;
  made.textValue = value;
  return made;
}

QuindleValue QuindleValue::boolean(bool value) {
  QuindleValue made;
  made.kind = Kind::Boolean;
  made.boolValue = value;
  return made;
}

QuindleValue QuindleValue::identifier(const std::string& word) {
  QuindleValue made;
  made.kind = Kind::Identifier;
  made.textValue = word;
  return made;
}

std::string QuindleValue::toSource() const {
  if (kind != Kind::Tuple) return leafSource(*this);
  static const std::vector<QuindleValue> none;
  std::string out;
  tree::each(
      *this,
      [](const QuindleValue& value) -> const auto& { return value.kind == Kind::Tuple ? value.items : none; },
      [&out](const QuindleValue& value, const tree::Place<QuindleValue>& place) {
        if (place.index > 0) out += ", ";
        out += value.kind == Kind::Tuple ? "(" : leafSource(value);
      },
      [&out](const QuindleValue& value) {
        if (value.kind == Kind::Tuple) out += ')';
      });
  return out;
}

std::string QuindleValue::toPlainText() const {
  return kind == Kind::Text || kind == Kind::Identifier ? textValue : toSource();
}

std::string QuindleExpr::toSource() const {
  using Place = tree::Place<QuindleExpr>;
  std::string out;
  const auto printedChildren = [](const QuindleExpr& expr) {
    return std::span<const QuindleExpr>(expr.operands).first(printedOperands(expr));
  };
  tree::each(
      *this, printedChildren,
      [&out](const QuindleExpr& expr, const Place& place) {
        printBetween(place, out);
        if (needsParentheses(expr, place.parent)) out += '(';
        printBefore(expr, out);
      },
      [&out](const QuindleExpr& expr, const Place& place) {
        if (expr.kind == Kind::Call) out += ')';
        if (needsParentheses(expr, place.parent)) out += ')';
      });
  return out;
}

QuindleParam* QuindleDocument::findParam(const std::string& wanted) {
  const auto found = std::find_if(params.begin(), params.end(),
                                  [&](const QuindleParam& param) { return param.name == wanted; });
  return found == params.end() ? nullptr : &*found;
}

const QuindleParam* QuindleDocument::findParam(const std::string& wanted) const {
  return const_cast<QuindleDocument*>(this)->findParam(wanted);
}

const QuindleTrigger* QuindleDocument::runTrigger() const {
  for (const QuindleTrigger::Kind kind : {QuindleTrigger::Kind::Run, QuindleTrigger::Kind::Key})
    for (const QuindleTrigger& trigger : triggers)
      if (trigger.kind == kind) return &trigger;
  return nullptr;
}

int QuindleDocument::addListener(const Listener& listener) {
  listeners[nextListenerId] = listener;
  return nextListenerId++;
}

void QuindleDocument::removeListener(int id) { listeners.erase(id); }

void QuindleDocument::touch() {
  ++revision;
  const std::map<std::int32_t, Listener> current = listeners;
  for (const auto& [id, listener] : current)
    if (listener) listener(*this);
}

std::string quindleIdentifier(const std::string& text) {
  std::string out = text;
  for (char& c : out)
    if (!isNameByte(c)) c = '_';
  return out;
}

} // namespace Zamt
