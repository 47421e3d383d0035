#include "host/session/saidClasses.h"

#include "quindle/core/QuindleNodes.h"
#include "quindle/plan/QuindlePlanNode.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <deque>
#include <limits>
#include <set>
#include <utility>

namespace Zamt::Host {

namespace {

using ExprKind = QuindleExpr::Kind;

constexpr const char* classType = "Class";
constexpr const char* classField = "Classification";
constexpr const char* classesSlot = ".classes";

bool isNumber(std::string_view text) {
  return !text.empty() && text.find_first_not_of("0123456789") == std::string_view::npos;
}

std::optional<std::int32_t> wholeNumber(double value) {
  constexpr double highestByte = 255;
  if (!(value >= 0 && value <= highestByte) || std::trunc(value) != value) return std::nullopt;
  return static_cast<std::int32_t>(value);
}

bool isText(const QuindleExpr& expr, std::string_view text) {
  return expr.kind == ExprKind::Literal && expr.value.textValue == text;
}

/// Gathers what a set of Quindles says. How values reach parameters is followed backwards, from those that a
/// condition reads, so that each place is looked at once however often the Quindles run one another.
class Listener {
public:
  Listener(const std::map<std::string, std::string>& values, const QuindleResolver& resolver)
      : values_(values), resolver_(resolver) {}

  std::vector<SaidClass> hear(const QuindleDocument& root) {
    add(root);
    for (std::size_t i = 0; i < documents_.size(); ++i) read(*documents_[i]);
    while (!waiting_.empty()) {
      const Word word = std::move(waiting_.back());
      waiting_.pop_back();
      follow(word);
    }
    return std::move(said_);
  }

private:
  /// A parameter or a "let", which conditions may read.
  using Word = std::pair<const QuindleDocument*, std::string>;

  /// What a word may get its value from.
  struct Source {
    const QuindleDocument* document;
    const QuindleExpr* expr;
    std::int32_t line;
  };

  void add(const QuindleDocument& document) {
    known_.emplace(document.name, &document);
    documents_.push_back(&document);
  }

  /// The Quindle of that name; null if it can't be had.
  const QuindleDocument* find(const std::string& name) {
    const auto found = known_.find(name);
    if (found != known_.end()) return found->second;
    QuindleDocument document;
    std::string why;
    const bool good = resolver_ && resolver_(name, document, why);
    known_.emplace(name, nullptr);
    if (!good) return nullptr;
    const QuindleDocument& kept = nested_.emplace_back(std::move(document));
    documents_.push_back(&kept);
    return known_[name] = &kept;
  }

  void read(const QuindleDocument& document) {
    for (const QuindleParam& param : document.params)
      if (param.type == classType) mark({&document, param.name});
    for (const QuindleStep* const step : quindleSteps(document)) readStep(document, *step);
  }

  void readStep(const QuindleDocument& document, const QuindleStep& step) {
    using Kind = QuindleStep::Kind;
    switch (step.kind) {
    case Kind::Classify: sayTarget(document, step); break;
    case Kind::Select: readCondition(document, step); break;
    case Kind::Set:
      if (step.name.ends_with(classesSlot)) sayValue({&document, &step.value, step.line});
      break;
    case Kind::Let: sources_[{&document, step.name}].push_back({&document, &step.value, step.line}); break;
    case Kind::Run: readRun(document, step); break;
    default: break;
    }
  }

  void sayTarget(const QuindleDocument& document, const QuindleStep& step) {
    SaidClass said{step.value.value.textValue, {}, true, document.sourceFile, step.line};
    constexpr double most = std::numeric_limits<std::int32_t>::max();
    if (step.classNumber.kind == QuindleValue::Kind::Number && step.classNumber.numberValue >= 0)
      said.number = static_cast<std::int32_t>(std::min(step.classNumber.numberValue, most));
    if (!said.name.empty()) said_.push_back(std::move(said));
  }

  void readCondition(const QuindleDocument& document, const QuindleStep& step) {
    QuindlePlanNode plan;
    Diag faults; // which compilation tells
    if (!planPredicate(step.condition, plan, faults, document.sourceFile)) return;
    std::vector<const QuindlePlanNode*> waiting{&plan};
    while (!waiting.empty()) {
      const QuindlePlanNode& node = *waiting.back();
      waiting.pop_back();
      for (std::size_t i = node.children.size(); i-- > 0;) waiting.push_back(&node.children[i]);
      if (node.kind == QuindlePlanNode::Kind::Condition && node.operation) readOne(document, node);
    }
  }

  void readOne(const QuindleDocument& document, const QuindlePlanNode& node) {
    const std::vector<QuindleExpr>& arguments = node.arguments;
    if (node.operation->name == "class") return sayValue({&document, &arguments[0], node.line});
    if (node.operation->name == "expr") return readExpression(document, node);
    if (node.operation->name != "field" || !isText(arguments[0], classField)) return;
    for (const QuindleExpr* const bound : {&arguments[1], &arguments[2]})
      if (bound->kind != ExprKind::Literal)
        sayValue({&document, bound, node.line});
      else if (const auto number = wholeNumber(bound->value.numberValue))
        said_.push_back({{}, number, false, document.sourceFile, node.line});
  }

  /// Takes every number of an expression that looks at the class for one: which it is compared with would
  /// take reading it.
  void readExpression(const QuindleDocument& document, const QuindlePlanNode& node) {
    std::string text = node.arguments[0].value.textValue;
    if (text.find(classField) == std::string::npos) return;
    std::ranges::replace_if(
        text, [](char c) { return c < '0' || c > '9'; }, ',');
    say(text, document, node.line);
  }

  void readRun(const QuindleDocument& document, const QuindleStep& step) {
    const QuindleDocument* const target = find(step.name);
    for (std::size_t i = 0; target && i < std::min(step.args.size(), step.argNames.size()); ++i)
      sources_[{target, step.argNames[i]}].push_back({&document, &step.args[i], step.line});
  }

  void say(std::string_view list, const QuindleDocument& document, std::int32_t line) {
    const std::size_t before = said_.size();
    sayClasses(list, said_);
    for (std::size_t i = before; i < said_.size(); ++i) {
      said_[i].file = document.sourceFile;
      said_[i].line = line;
    }
  }

  /// What is written out is said; a word is what it may have got.
  void sayValue(const Source& source) {
    for (const QuindleExpr* const part : quindleExprs(*source.expr))
      if (part->kind == ExprKind::Literal)
        say(part->value.toPlainText(), *source.document, source.line);
      else if (part->kind == ExprKind::Reference)
        mark({source.document, part->name});
  }

  void mark(Word word) {
    if (marked_.insert(word).second) waiting_.push_back(std::move(word));
  }

  void follow(const Word& word) {
    const QuindleDocument& document = *word.first;
    const QuindleParam* const param = document.findParam(word.second);
    if (param) say(param->defaultValue.toPlainText(), document, param->line);
    const auto given = values_.find(word.second);
    if (&document == documents_.front() && given != values_.end()) sayClasses(given->second, said_);
    const auto sources = sources_.find(word);
    if (sources == sources_.end()) return;
    for (const Source& source : sources->second) sayValue(source);
  }

  const std::map<std::string, std::string>& values_;
  const QuindleResolver& resolver_;
  std::deque<QuindleDocument> nested_; ///< A queue, since what is in it is pointed to.
  std::vector<const QuindleDocument*> documents_;
  std::map<std::string, const QuindleDocument*> known_; ///< Null for one that can't be had.
  std::map<Word, std::vector<Source>> sources_;
  std::set<Word> marked_;
  std::vector<Word> waiting_;
  std::vector<SaidClass> said_;
};

} // namespace

void sayClasses(std::string_view list, std::vector<SaidClass>& said) {
  while (!list.empty()) {
    const std::size_t comma = std::min(list.find(','), list.size());
    std::string_view piece = list.substr(0, comma);
    list.remove_prefix(std::min(comma + 1, list.size()));
    while (piece.starts_with(' ')) piece.remove_prefix(1);
    while (piece.ends_with(' ')) piece.remove_suffix(1);
    std::int32_t number = 0;
    if (isNumber(piece) &&
        std::from_chars(piece.data(), piece.data() + piece.size(), number).ec == std::errc())
      said.push_back({{}, number, false, {}, 0});
    else if (!piece.empty())
      said.push_back({std::string(piece), {}, false, {}, 0});
  }
}

std::vector<SaidClass> saidClasses(const QuindleDocument& document,
                                   const std::map<std::string, std::string>& values,
                                   const QuindleResolver& resolver) {
  return Listener(values, resolver).hear(document);
}

} // namespace Zamt::Host
