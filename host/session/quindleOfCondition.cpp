#include "host/session/quindleOfCondition.h"

#include "host/session/adviseOnText.h"
#include "quindle/core/PointVocabulary.h"
#include "quindle/core/QuindleNodes.h"
#include "quindle/plan/QuindleOperation.h"
#include "quindle/plan/diagnoseQuindle.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <optional>
#include <set>
#include <string_view>
#include <utility>
#include <vector>

namespace Zamt::Host {

namespace {

using Kind = QuindleExpr::Kind;

/// The class to be changed, and what it is called where the condition asks for a class of that name: a
/// Quindle may not put points into a class that it selects.
constexpr const char* countedClass = "Counted";
constexpr const char* otherCountedClass = "Counted Now";
constexpr const char* countName = "neighbours";

/// What stands in front of the condition takes one line.
constexpr std::int32_t linesBefore = 1;

QuindleValue classNameOf(const std::string& written, std::string& number) {
  unsigned value = 0;
  const char* const end = written.data() + written.size();
  const auto [behind, error] = std::from_chars(written.data(), end, value);
  if (error != std::errc() || behind != end) return QuindleValue::text(written);
  number = fmt::format(" as {}", value);
  for (const auto* const table : {&standardQuindleClasses(), &olderQuindleClasses()})
    for (const QuindleClass& known : *table)
      if (static_cast<unsigned>(known.number) == value) return QuindleValue::text(known.name);
  return QuindleValue::text(fmt::format("Class {}", value));
}

/// A Quindle around the condition, which stands on lines of its own. What is behind it begins on a line of
/// its own too, so that a comment in the condition ends before.
std::string textAround(const std::string& condition, const std::string& className) {
  std::string number;
  const bool taken = condition.find(countedClass) != std::string::npos;
  const QuindleValue name = className.empty() ? QuindleValue::text(taken ? otherCountedClass : countedClass)
                                              : classNameOf(className, number);
  return fmt::format("quindle \"One line\" {{ description \"Puts the points of one condition into a class.\" "
                     "param cloud : Grid = active \"The cloud to work on.\" on run {{ select\n{}\nclassify "
                     "into {}{}\n}} }}\n",
                     condition, name.toSource(), number);
}

/// Whether the text between became one condition, and did not end the block that it stands in. Comments in it
/// are dropped.
bool takeOneCondition(QuindleDocument& document) {
  if (document.triggers.size() != 1 || document.params.size() != 1) return false;
  std::vector<QuindleStep>& steps = document.triggers[0].steps;
  std::erase_if(steps, [](const QuindleStep& step) { return step.kind == QuindleStep::Kind::Comment; });
  return steps.size() == 2 && steps[0].kind == QuindleStep::Kind::Select &&
         steps[1].kind == QuindleStep::Kind::Classify;
}

/// Leaves out what is said of the text around a condition. A fault that shows only there has its cause at the
/// end of the condition.
void keepWithin(const std::string& condition, Diag& diag) {
  const auto lines = static_cast<std::int32_t>(std::count(condition.begin(), condition.end(), '\n')) + 1;
  const std::size_t lastLine = condition.rfind('\n') + 1; // 0 where there is no line end
  Diag within;
  for (const Diag::Entry& entry : diag.entries)
    if (entry.line > linesBefore && entry.line <= linesBefore + lines)
      within.at(entry.severity, entry.message, entry.file, entry.line, entry.column);
  if (within.errorCount == 0)
    within.at(
        Diag::Severity::Error,
        "This is no whole condition: something is missing at its end, or a bracket closes what was never "
        "opened.",
        conditionLabel, linesBefore + lines, static_cast<std::int32_t>(condition.size() - lastLine) + 1);
  diag = std::move(within);
}

/// Says above the last step that its class is to be another.
void addComment(QuindleDocument& document) {
  QuindleStep comment;
  comment.comment = "Change the class to the one that these points belong to.";
  std::vector<QuindleStep>& steps = document.triggers[0].steps;
  steps.insert(steps.end() - 1, std::move(comment));
}

/// Turns what a condition holds into parameters.
class ParameterMaker {
public:
  /// Of what they are made.
  enum class From { Words, Numbers };

  explicit ParameterMaker(QuindleDocument& document) : document_(document) {
    for (const QuindleParam& param : document.params) taken_.insert(param.name);
  }

  void work(QuindleExpr& root, From from) {
    from_ = from;
    for (const QuindleExpr* const expr : quindleExprs(root))
      if (expr->kind == Kind::Reference || expr->kind == Kind::Call) taken_.insert(expr->name);
    std::vector<QuindleExpr*> waiting{&root};
    while (!waiting.empty()) {
      QuindleExpr& expr = *waiting.back();
      waiting.pop_back();
      if (expr.kind == Kind::Compare && expr.operands.size() == 2) workOnComparison(expr);
      if (expr.kind == Kind::Call) workOnCall(expr);
      for (std::size_t i = expr.operands.size(); i-- > 0;) waiting.push_back(&expr.operands[i]);
    }
  }

private:
  static const char* leastOrMost(std::string_view op) {
    if (op == "==") return "exact";
    return op.starts_with('>') ? "least" : "most";
  }

  void workOnComparison(QuindleExpr& compare) {
    const QuindleExpr& left = compare.operands[0];
    QuindleExpr& right = compare.operands[1];
    const bool counts = left.kind == Kind::Call && left.name == countName;
    if (from_ == From::Numbers && right.kind == Kind::Literal && counts) makeInclusive(compare);
    const std::string which = leastOrMost(compare.op);
    std::string name = left.name;
    if (!name.empty() && name[0] >= 'a' && name[0] <= 'z') name[0] = static_cast<char>(name[0] - 'a' + 'A');
    replace(right, which + name, "Number", counts ? countHelp(which) : fieldHelp(which, left.name));
  }

  static std::string countHelp(const std::string& which) {
    if (which == "exact") return "How many neighbours a point has to have.";
    return findQuindleOperation(countName)->findParam(which == "least" ? "minimum" : "maximum")->help;
  }

  static std::string fieldHelp(const std::string& which, const std::string& field) {
    return which == "exact" ? fmt::format("The {} of the points.", field)
                            : fmt::format("The {} {} of the points.", which, field);
  }

  /// Counts are whole, and only a bound that is part of its range can be a parameter.
  static void makeInclusive(QuindleExpr& compare) {
    double& bound = compare.operands[1].value.numberValue;
    const bool strict = compare.op == "<" || compare.op == ">";
    if (!strict) return;
    compare.operands[1].value = QuindleValue::number(compare.op == "<" ? bound - 1 : bound + 1);
    compare.op += '=';
  }

  void workOnCall(QuindleExpr& call) {
    const QuindleOperation* const operation = findQuindleOperation(call.name);
    if (operation == nullptr) return;
    for (std::size_t i = 0; i < call.operands.size(); ++i) {
      const bool named = i < call.argNames.size() && !call.argNames[i].empty();
      const QuindleOpParam* const argument = named ? operation->findParam(call.argNames[i])
                                             : i < operation->params.size() ? &operation->params[i]
                                                                            : nullptr;
      if (argument != nullptr) workOnArgument(call, *argument, call.operands[i]);
    }
  }

  void workOnArgument(const QuindleExpr& call, const QuindleOpParam& argument, QuindleExpr& operand) {
    static constexpr std::array<std::pair<std::string_view, const char*>, 7> types{{{"radius", "Number"},
                                                                                    {"margin", "Number"},
                                                                                    {"tolerance", "Number"},
                                                                                    {"minimum", "Number"},
                                                                                    {"maximum", "Number"},
                                                                                    {"surface", "Surface"},
                                                                                    {"region", "Region"}}};
    for (const auto& [name, type] : types)
      if (name == argument.name) replace(operand, nameOf(call, argument), type, firstSentence(argument.help));
  }

  static std::string firstSentence(const std::string& text) {
    const std::size_t end = text.find(". ");
    return end == std::string::npos ? text : text.substr(0, end + 1);
  }

  /// Ranges are told apart by what they are of, so that several do not all become "minimum".
  static std::string nameOf(const QuindleExpr& call, const QuindleOpParam& argument) {
    const bool least = argument.name == "minimum";
    if (!least && argument.name != "maximum") return argument.name;
    const bool ofField = !call.operands.empty() && call.operands[0].value.kind == QuindleValue::Kind::Text;
    const std::string what = ofField ? quindleIdentifier(call.operands[0].value.textValue) : "Neighbours";
    return (least ? "least" : "most") + what;
  }

  /// A number becomes the default of a new parameter, a word one that has to be given.
  void replace(QuindleExpr& expr, const std::string& name, const char* type, const std::string& help) {
    QuindleParam param;
    param.type = type;
    param.help = help;
    if (from_ == From::Words && expr.kind == Kind::Reference) {
      if (document_.findParam(expr.name) != nullptr) return;
      param.name = expr.name;
    } else if (from_ == From::Numbers && expr.kind == Kind::Literal &&
               expr.value.kind == QuindleValue::Kind::Number) {
      param.name = unused(name);
      param.defaultValue = std::move(expr.value);
      expr.kind = Kind::Reference;
      expr.name = param.name;
      expr.value = {};
    } else {
      return;
    }
    document_.params.push_back(std::move(param));
  }

  std::string unused(const std::string& wanted) {
    std::string name = wanted;
    for (int number = 2; !taken_.insert(name).second; ++number) name = fmt::format("{}{}", wanted, number);
    return name;
  }

  QuindleDocument& document_;
  std::set<std::string> taken_;
  From from_ = From::Words;
};

} // namespace

bool quindleOfCondition(const std::string& condition, const std::string& className, QuindleDocument& document,
                        Diag& diag) {
  Diag found;
  const std::string text = textAround(condition, className);
  bool good = diagnoseQuindle(text, conditionLabel, document, found);
  if (!good) {
    keepWithin(condition, found);
  } else if (!takeOneCondition(document)) {
    found.clear();
    found.at(Diag::Severity::Error,
             "This is more than one condition. Write one, its parts joined by \"and\" and \"or\".",
             conditionLabel, linesBefore + 1, 1);
    good = false;
  }
  if (good) {
    // Advice looks at the numbers as they were written, and takes words that nothing declares for slips.
    QuindleExpr& root = document.triggers[0].steps[0].condition;
    ParameterMaker maker(document);
    maker.work(root, ParameterMaker::From::Words);
    adviseOnText(document, text, found);
    maker.work(root, ParameterMaker::From::Numbers);
    document.sourceFile.clear();
    if (className.empty()) addComment(document);
  }
  for (Diag::Entry& entry : found.entries)
    if (entry.line > linesBefore) entry.line -= linesBefore;
  diag.absorb(found);
  return good;
}

} // namespace Zamt::Host
