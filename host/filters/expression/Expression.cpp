#include "host/filters/expression/Expression.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <numbers>
#include <system_error>

namespace Zamt::Host {

namespace {

using UnaryColumn = void (*)(double*, std::size_t);
using BinaryColumn = void (*)(double*, const double*, std::size_t);

template <auto F>
void eachOne(double* values, std::size_t count) {
  for (std::size_t i = 0; i < count; ++i) values[i] = F(values[i]);
}

template <auto F>
void eachTwo(double* left, const double* right, std::size_t count) {
  for (std::size_t i = 0; i < count; ++i) left[i] = F(left[i], right[i]);
}

/// Neither 0 nor NaN.
bool holds(double value) { return value < 0 || value > 0; }

struct Operator {
  std::string_view spelling;
  int rank; ///< The higher binds the stronger.
  BinaryColumn apply;
};

constexpr int notRank = 3;
constexpr int compareRank = 4;
constexpr int signRank = 7;
constexpr int powerRank = 8;

/// A spelling stands before those that it begins with.
constexpr std::array operators{
    Operator{"or", 1, eachTwo<[](double a, double b) { return holds(a) || holds(b) ? 1.0 : 0.0; }>},
    Operator{"and", 2, eachTwo<[](double a, double b) { return holds(a) && holds(b) ? 1.0 : 0.0; }>},
    Operator{"<=", compareRank, eachTwo<[](double a, double b) { return a <= b ? 1.0 : 0.0; }>},
    Operator{"<", compareRank, eachTwo<[](double a, double b) { return a < b ? 1.0 : 0.0; }>},
    Operator{">=", compareRank, eachTwo<[](double a, double b) { return b <= a ? 1.0 : 0.0; }>},
    Operator{">", compareRank, eachTwo<[](double a, double b) { return b < a ? 1.0 : 0.0; }>},
    Operator{"==", compareRank, eachTwo<[](double a, double b) { return a == b ? 1.0 : 0.0; }>},
    Operator{"!=", compareRank, eachTwo<[](double a, double b) { return a != b ? 1.0 : 0.0; }>},
    Operator{"+", 5, eachTwo<[](double a, double b) { return a + b; }>},
    Operator{"-", 5, eachTwo<[](double a, double b) { return a - b; }>},
    Operator{"*", 6, eachTwo<[](double a, double b) { return a * b; }>},
    Operator{"/", 6, eachTwo<[](double a, double b) { return a / b; }>},
    Operator{"%", 6, eachTwo<[](double a, double b) { return std::fmod(a, b); }>},
    Operator{"^", powerRank, eachTwo<[](double a, double b) { return std::pow(a, b); }>},
};

struct Function {
  std::string_view name;
  UnaryColumn one;  ///< Takes one value,
  BinaryColumn two; ///< or two,
  bool many;        ///< or one and more, worked on from the left.
};

#define QUINDLE_UNARY(name)                                                                                  \
  Function {                                                                                                 \
#name, eachOne < [](double a) { return std::name(a); }>, nullptr, false                                  \
  }
constexpr std::array functions{
    Function{"abs", eachOne<[](double a) { return std::abs(a); }>, nullptr, false},
    QUINDLE_UNARY(sqrt),
    QUINDLE_UNARY(exp),
    Function{"ln", eachOne<[](double a) { return std::log(a); }>, nullptr, false},
    QUINDLE_UNARY(log2),
    QUINDLE_UNARY(log10),
    QUINDLE_UNARY(sin),
    QUINDLE_UNARY(cos),
    QUINDLE_UNARY(tan),
    QUINDLE_UNARY(asin),
    QUINDLE_UNARY(acos),
    QUINDLE_UNARY(atan),
    QUINDLE_UNARY(sinh),
    QUINDLE_UNARY(cosh),
    QUINDLE_UNARY(tanh),
    QUINDLE_UNARY(floor),
    QUINDLE_UNARY(ceil),
    QUINDLE_UNARY(round),
    QUINDLE_UNARY(trunc),
    Function{"sign", eachOne<[](double a) { return 0 < a   ? 1.0
                                                   : a < 0 ? -1.0
                                                           : a; }>, nullptr, false},
    Function{"atan2", nullptr, eachTwo<[](double a, double b) { return std::atan2(a, b); }>, false},
    Function{"pow", nullptr, eachTwo<[](double a, double b) { return std::pow(a, b); }>, false},
    Function{"hypot", nullptr, eachTwo<[](double a, double b) { return std::hypot(a, b); }>, false},
    Function{"min", nullptr, eachTwo<[](double a, double b) { return std::fmin(a, b); }>, true},
    Function{"max", nullptr, eachTwo<[](double a, double b) { return std::fmax(a, b); }>, true},
};
#undef QUINDLE_UNARY

struct Constant {
  std::string_view name;
  double value;
};
constexpr std::array constants{Constant{"pi", std::numbers::pi}, Constant{"true", 1}, Constant{"false", 0}};

bool isDigit(char c) { return c >= '0' && c <= '9'; }

/// Bytes of other alphabets are letters, as fields may be named in any language.
bool isLetter(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_' ||
         static_cast<unsigned char>(c) >= 0x80;
}

std::string quoted(std::string_view text) {
  // Enough to recognise an expression by, and short enough to print.
  constexpr std::size_t longest = 80;
  if (text.size() <= longest) return '"' + std::string(text) + '"';
  return '"' + std::string(text.substr(0, longest)) + "...\"";
}

template <typename Table>
std::string listed(const Table& table) {
  std::string list;
  for (const auto& entry : table) list += (list.empty() ? "" : ", ") + std::string(entry.name);
  return list;
}

} // namespace

/// Reads an expression from left to right and puts its steps in postfix order; operators wait on a stack of
/// their own, so that nesting costs memory and not call depth.
class ExpressionCompiler {
public:
  ExpressionCompiler(std::string_view source, std::span<const ExpressionName> known)
      : text_(source), names_(known) {}

  std::optional<Expression> compile(std::string& problem) {
    while (fault_.empty() && skipBlanks()) wantsValue_ ? readValue() : readOperator();
    if (fault_.empty()) finish();
    if (fault_.empty()) return std::move(result_);
    problem = "The expression " + quoted(text_) + " can't be used: at character " +
              std::to_string(faultAt_ + 1) + ", " + fault_;
    return std::nullopt;
  }

private:
  struct Waiting {
    enum class Kind : std::uint8_t { Operator, Not, Minus, Parenthesis, Call } kind;
    std::size_t at;
    const Operator* op = nullptr;
    const Function* function = nullptr;
    std::size_t arguments = 1;

    int rank() const {
      if (kind == Kind::Operator) return op->rank;
      return kind == Kind::Not ? notRank : kind == Kind::Minus ? signRank : 0;
    }
    bool opens() const { return kind == Kind::Parenthesis || kind == Kind::Call; }
  };
  using Step = Expression::Step;

  void fail(std::size_t where, std::string what) {
    if (!fault_.empty()) return;
    fault_ = std::move(what);
    faultAt_ = where;
  }

  bool skipBlanks() {
    while (at_ < text_.size() && std::string_view(" \t\r\n").find(text_[at_]) != std::string_view::npos)
      ++at_;
    return at_ < text_.size();
  }

  bool accept(std::string_view symbol) {
    if (!text_.substr(at_).starts_with(symbol)) return false;
    at_ += symbol.size();
    return true;
  }

  std::string_view wordAt(std::size_t start) const {
    std::size_t end = start;
    while (end < text_.size() && (isLetter(text_[end]) || (end > start && isDigit(text_[end])))) ++end;
    return text_.substr(start, end - start);
  }

  void readValue() {
    const std::size_t start = at_;
    const char c = text_[at_];
    if (isDigit(c) || c == '.') return readNumber();
    if (isLetter(c)) return readWord();
    if (c == '\'') return readQuotedName();
    if (accept("(")) return waiting_.push_back({Waiting::Kind::Parenthesis, start});
    if (accept("-")) return waiting_.push_back({Waiting::Kind::Minus, start});
    if (accept("+")) return;
    fail(start, "a value is missing in front of " + quoted(text_.substr(at_, 1)) +
                    ". Write a field, a number or a parenthesis there.");
  }

  void readNumber() {
    double value = 0;
    const char* end = text_.data() + text_.size();
    const auto read = std::from_chars(text_.data() + at_, end, value);
    const auto length = static_cast<std::size_t>(read.ptr - (text_.data() + at_));
    if (read.ec != std::errc{} ||
        (at_ + length < text_.size() && (isLetter(text_[at_ + length]) || text_[at_ + length] == '.')))
      return fail(at_, "there is no number that can be read. Write it as in 12, 0.5 or 1e-3.");
    at_ += length;
    pushConstant(value);
  }

  void readWord() {
    const std::size_t start = at_;
    const std::string_view word = wordAt(at_);
    at_ += word.size();
    if (word == "not") return waiting_.push_back({Waiting::Kind::Not, start});
    if (word == "and" || word == "or")
      return fail(start, "a value is missing in front of " + quoted(word) +
                             ". Write a field, a number or a parenthesis there.");
    const bool blank = skipBlanks();
    if (blank && text_[at_] == '(') return readCall(start, word);
    if (const ExpressionName* known = findName(word)) return readComponent(start, *known);
    for (const Constant& constant : constants)
      if (constant.name == word) return pushConstant(constant.value);
    if (word.size() == 1 && word[0] >= 'x' && word[0] <= 'z') {
      const std::string axis(1, static_cast<char>(word[0] - 'x' + 'X'));
      if (const ExpressionName* known = findName(axis)) return pushInput(*known, 0);
    }
    failUnknown(start, word);
  }

  void readQuotedName() {
    const std::size_t start = at_;
    const std::size_t end = text_.find('\'', at_ + 1);
    if (end == std::string_view::npos)
      return fail(start, "a quoted field name has no end. Write a single quote behind the name.");
    const std::string_view name = text_.substr(at_ + 1, end - at_ - 1);
    at_ = end + 1;
    if (const ExpressionName* known = findName(name)) return readComponent(start, *known);
    failUnknown(start, name);
  }

  void failUnknown(std::size_t where, std::string_view name) {
    fail(where, "there is no field called " + quoted(name) +
                    (names_.empty() ? "." : ". The fields are " + listed(names_) + "."));
  }

  const ExpressionName* findName(std::string_view name) const {
    const auto found = std::find_if(names_.begin(), names_.end(),
                                    [&](const ExpressionName& known) { return known.name == name; });
    return found == names_.end() ? nullptr : &*found;
  }

  void readComponent(std::size_t start, const ExpressionName& name) {
    unsigned component = 0;
    if (skipBlanks() && text_[at_] == '[') {
      ++at_;
      skipBlanks();
      const auto read = std::from_chars(text_.data() + at_, text_.data() + text_.size(), component);
      at_ = static_cast<std::size_t>(read.ptr - text_.data());
      skipBlanks();
      if (read.ec != std::errc{} || component >= name.components || !accept("]"))
        return failComponent(start, name);
    } else if (name.components > 1) {
      return failComponent(start, name);
    }
    pushInput(name, component);
  }

  void failComponent(std::size_t start, const ExpressionName& name) {
    const std::string last =
        name.components > 1 ? " to " + name.name + "[" + std::to_string(name.components - 1) + "]" : "";
    fail(start, quoted(name.name) + " has " + std::to_string(name.components) +
                    (name.components == 1 ? " value" : " values") + " a point. Write " + name.name + "[0]" +
                    last + ".");
  }

  void readCall(std::size_t start, std::string_view name) {
    const auto* found = std::find_if(functions.begin(), functions.end(),
                                     [&](const Function& function) { return function.name == name; });
    if (found == functions.end())
      return fail(start, "there is no function called " + quoted(name) + ". The functions are " +
                             listed(functions) + ".");
    ++at_;
    waiting_.push_back({Waiting::Kind::Call, start, nullptr, found});
  }

  void readOperator() {
    const std::size_t start = at_;
    if (accept(")")) return close(start);
    if (accept(",")) return nextArgument(start);
    const std::string_view word = wordAt(at_);
    for (const Operator& op : operators) {
      if (isLetter(op.spelling[0]) ? word != op.spelling : !text_.substr(at_).starts_with(op.spelling))
        continue;
      at_ += op.spelling.size();
      return pushOperator(start, op);
    }
    if (accept("="))
      return fail(start, "\"=\" would set a value, and an expression only asks. Write == to compare.");
    fail(start, "an operator is missing in front of " + quoted(word.empty() ? text_.substr(at_, 1) : word) +
                    ". Join values with +, <, and, or and their like.");
  }

  void pushOperator(std::size_t start, const Operator& op) {
    // Only what groups from the right leaves its equals waiting.
    while (
        !waiting_.empty() && !waiting_.back().opens() &&
        (waiting_.back().rank() > op.rank || (waiting_.back().rank() == op.rank && op.rank != powerRank))) {
      if (op.rank == compareRank && waiting_.back().rank() == compareRank)
        return fail(start, "a comparison is compared again. Compare two values at a time and join the "
                           "comparisons with and.");
      emitWaiting();
    }
    waiting_.push_back({Waiting::Kind::Operator, start, &op});
    wantsValue_ = true;
  }

  void emitWaiting() {
    const Waiting top = waiting_.back();
    waiting_.pop_back();
    if (top.kind == Waiting::Kind::Not)
      pushUnary(eachOne<[](double a) { return holds(a) ? 0.0 : 1.0; }>);
    else if (top.kind == Waiting::Kind::Minus)
      pushUnary(eachOne<[](double a) { return -a; }>);
    else
      pushBinary(top.op->apply);
  }

  void emitToOpening() {
    while (!waiting_.empty() && !waiting_.back().opens()) emitWaiting();
  }

  void close(std::size_t start) {
    emitToOpening();
    if (waiting_.empty())
      return fail(start, "a \")\" closes nothing. Take it away, or write the \"(\" that it belongs to.");
    const Waiting opening = waiting_.back();
    waiting_.pop_back();
    if (opening.kind == Waiting::Kind::Call) finishCall(opening);
  }

  void nextArgument(std::size_t start) {
    emitToOpening();
    if (waiting_.empty() || waiting_.back().kind != Waiting::Kind::Call)
      return fail(start, "a comma stands outside of a function. Write numbers with a point, as in 0.5.");
    Waiting& call = waiting_.back();
    ++call.arguments;
    // Worked on as they come, so that a long list of arguments needs no more columns than a short one.
    if (call.function->many && call.arguments > 2) pushBinary(call.function->two);
    wantsValue_ = true;
  }

  void finishCall(const Waiting& call) {
    const Function& function = *call.function;
    const std::size_t wanted = function.one ? 1 : 2;
    if (!function.many && call.arguments != wanted)
      return fail(call.at, quoted(function.name) + " takes " + (wanted == 1 ? "one value" : "two values") +
                               " and has " + std::to_string(call.arguments) +
                               ". Separate values with commas.");
    if (function.one)
      pushUnary(function.one);
    else if (call.arguments > 1)
      pushBinary(function.two);
  }

  void finish() {
    if (wantsValue_)
      return fail(at_, "a value is missing at the end. Write a field, a number or a parenthesis there.");
    emitToOpening();
    if (!waiting_.empty())
      fail(waiting_.back().at, "a parenthesis is not closed. Write the \")\" that belongs to it.");
  }

  void pushColumn(const Step& step) {
    result_.steps_.push_back(step);
    result_.depth_ = std::max(result_.depth_, ++height_);
    wantsValue_ = false;
  }

  void pushConstant(double value) { pushColumn({Step::Kind::Constant, 0, value}); }

  void pushInput(const ExpressionName& name, unsigned component) {
    const ExpressionInput input{static_cast<std::size_t>(&name - names_.data()), component};
    const auto found = std::find(result_.needed_.begin(), result_.needed_.end(), input);
    const auto position = static_cast<std::size_t>(found - result_.needed_.begin());
    if (found == result_.needed_.end()) result_.needed_.push_back(input);
    pushColumn({Step::Kind::Input, position});
  }

  void pushUnary(UnaryColumn apply) { result_.steps_.push_back({Step::Kind::Unary, 0, 0, apply}); }

  void pushBinary(BinaryColumn apply) {
    result_.steps_.push_back({Step::Kind::Binary, 0, 0, nullptr, apply});
    --height_;
  }

  std::string_view text_;
  std::span<const ExpressionName> names_;
  std::size_t at_ = 0;
  bool wantsValue_ = true;
  std::vector<Waiting> waiting_;
  std::size_t height_ = 0;
  Expression result_;
  std::string fault_;
  std::size_t faultAt_ = 0;
};

std::optional<Expression> Expression::compile(std::string_view text, std::span<const ExpressionName> names,
                                              std::string& problem) {
  return ExpressionCompiler(text, names).compile(problem);
}

std::size_t Expression::columnLength() const {
  constexpr std::size_t longest = 512;    // Four columns fit the nearest cache.
  constexpr std::size_t values = 262'144; // What all columns hold together, where the nesting allows it.
  return std::clamp<std::size_t>(values / std::max<std::size_t>(depth_, 1), 1, longest);
}

void Expression::evaluate(std::span<const std::span<const double>> columns, std::vector<double>& scratch,
                          std::span<double> out) const {
  const std::size_t count = out.size();
  if (scratch.size() < depth_ * count) scratch.resize(depth_ * count);
  double* top = scratch.data();
  for (const Step& step : steps_) switch (step.kind) {
    case Step::Kind::Constant:
      std::fill_n(top, count, step.constant);
      top += count;
      break;
    case Step::Kind::Input:
      std::copy_n(columns[step.input].data(), count, top);
      top += count;
      break;
    case Step::Kind::Unary: step.unary(top - count, count); break;
    case Step::Kind::Binary:
      top -= count;
      step.binary(top - count, top, count);
      break;
    }
  std::copy_n(scratch.data(), count, out.data());
}

} // namespace Zamt::Host
