#include "host/verbs/options.h"
#include "host/verbs/verbs.h"
#include "quindle/plan/conditionCosts.h"
#include "quindle/plan/planQuindle.h"

#include <fmt/format.h>

#include <algorithm>
#include <string>
#include <string_view>
#include <vector>

namespace Zamt::Host {

namespace {

/// A Quindle, and plans of its steps.
struct Planned {
  QuindleDocument document;
  std::vector<QuindlePlannedSelect> selects;
};

/// Deeper nodes are shown at this depth, as indentation would otherwise cost the square of the depth.
constexpr std::size_t maxShownDepth = 32;

/// Longer conditions push their cost to the right instead of widening the whole table.
constexpr std::size_t maxColumn = 76;

/// The first of the words for a cost.
std::string_view wordOf(std::uint32_t cost) {
  const std::string_view words = costWords(cost);
  return words.substr(0, words.find(','));
}

/// The word of an "and" or "or"; null of a condition.
const char* joinOf(const QuindlePlanNode& node) {
  switch (node.kind) {
  case QuindlePlanNode::Kind::And: return "and";
  case QuindlePlanNode::Kind::Or: return "or";
  case QuindlePlanNode::Kind::Condition: break;
  }
  return nullptr;
}

std::string textOf(const QuindlePlanNode& node) {
  const char* const join = joinOf(node);
  return join == nullptr ? node.describe() : join;
}

void addSelect(const std::string& file, const QuindlePlannedSelect& select, std::string& out) {
  out += fmt::format("{}:{}: select\n", file, select.step->line);
  const std::vector<QuindlePlanLine> lines = quindlePlanLines(select.plan);
  std::vector<std::string> texts;
  std::size_t column = 0;
  for (const QuindlePlanLine& line : lines) {
    texts.push_back(std::string(2 * (1 + std::min(line.depth, maxShownDepth)), ' ') + textOf(*line.node));
    if (texts.back().size() <= maxColumn) column = std::max(column, texts.back().size());
  }
  for (std::size_t i = 0; i < lines.size(); ++i) {
    const std::size_t gap = texts[i].size() < column ? column - texts[i].size() : 0;
    out += fmt::format("{}{}  {:>5}  {}\n", texts[i], std::string(gap, ' '), lines[i].cost,
                       wordOf(lines[i].cost));
  }
}

std::string planText(const Planned& planned) {
  std::string text;
  for (const QuindlePlannedSelect& select : planned.selects)
    if (select.good) addSelect(planned.document.sourceFile, select, text);
  return text;
}

Data lineData(const QuindlePlanLine& line) {
  const char* const join = joinOf(*line.node);
  return Fields{{"depth", line.depth},           {"kind", join == nullptr ? "condition" : join},
                {"text", textOf(*line.node)},    {"cost", line.cost},
                {"costWord", wordOf(line.cost)}, {"line", line.node->line}};
}

/// The nodes as a flat list with their depths: a plan may be deeper than readers of data like.
Data selectData(const QuindlePlannedSelect& select) {
  Data::List nodes;
  if (select.good) nodes = Data::list(quindlePlanLines(select.plan), lineData);
  return Fields{{"line", select.step->line}, {"ok", select.good}, {"nodes", std::move(nodes)}};
}

Data planData(const Planned& planned) {
  return Fields{{"name", planned.document.name}, {"selects", Data::list(planned.selects, selectData)}};
}

Answer plan(const Request& request, const Context& context) {
  Diag diag;
  auto planned = std::make_shared<Planned>();
  if (context.quindles.load(request.text("quindle"), planned->document, diag))
    planned->selects = planQuindle(planned->document, diag);
  Diag remarks;
  if (planned->selects.empty() && diag.errorCount == 0)
    remarks.note("This Quindle selects nothing, so there is no plan.");
  return answerOf({std::move(diag), [planned] { return planText(*planned); },
                   [planned] { return planData(*planned); }, std::move(remarks)});
}

} // namespace

Verb planVerb() {
  return {
      .name = "plan",
      .summary = "Show the order in which conditions are worked out. They are listed for each \"select\", "
                 "with their costs.",
      .footer = "Example:\n  quindle plan examples/underwater-ground.quindle",
      .options = {quindleArgument(),
                  jsonOption("Print JSON: \"name\", \"selects\" with line, ok and nodes (depth, kind, text, "
                             "cost, costWord, line) of each, and \"diagnostics\".")},
      .run = plan};
}

} // namespace Zamt::Host
