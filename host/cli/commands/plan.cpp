#include "host/cli/commands/commands.h"
#include "host/cli/selects.h"
#include "host/session/QuindleSource.h"
#include "quindle/core/Tree.h"
#include "quindle/plan/conditionCosts.h"

#include <CLI/App.hpp>
#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace Zamt::Host {

namespace {

struct PlanOptions {
  std::string quindle;
  bool json = false;
};

/// One node of a plan as it is shown.
struct PlanLine {
  std::size_t depth = 0;
  std::string text;
  std::string_view kind;
  std::uint32_t cost = 0;
  std::int32_t line = 0;
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

PlanLine lineOf(const QuindlePlanNode& node, std::size_t depth) {
  switch (node.kind) {
  case QuindlePlanNode::Kind::And: return {depth, "and", "and", 0, node.line};
  case QuindlePlanNode::Kind::Or: return {depth, "or", "or", 0, node.line};
  case QuindlePlanNode::Kind::Condition: break;
  }
  return {depth, node.describe(), "condition", node.cost(), node.line};
}

/// The nodes in planned order, each before its children. Costs are gathered on the way up, by the rule of
/// `QuindlePlanNode::cost`: asking every node anew would cost the square of the depth.
std::vector<PlanLine> linesOf(const QuindlePlanNode& plan) {
  std::vector<PlanLine> lines;
  std::vector<std::size_t> open; // the lines of the nodes being walked, outermost first
  const auto childrenOf = [](const QuindlePlanNode& node) -> const auto& { return node.children; };
  tree::walk(plan, childrenOf,
             [&](const QuindlePlanNode& node, const QuindlePlanNode* parent, std::size_t index) {
               if (index == 0) {
                 open.push_back(lines.size());
                 lines.push_back(lineOf(node, open.size() - 1));
               }
               if (index < node.children.size()) return;
               const std::uint32_t cost = lines[open.back()].cost;
               open.pop_back();
               if (parent == nullptr) return;
               std::uint32_t& above = lines[open.back()].cost;
               if (parent->kind == QuindlePlanNode::Kind::Or)
                 above = std::max(above, cost);
               else
                 above = above == 0 ? cost : std::min(above, cost);
             });
  return lines;
}

void printPlan(const QuindleDocument& document, const PlannedSelect& select, Console& console) {
  console.printLine(fmt::format("{}:{}: select", document.sourceFile, select.step->line));
  const std::vector<PlanLine> lines = linesOf(select.plan);
  std::vector<std::string> texts;
  std::size_t column = 0;
  for (const PlanLine& line : lines) {
    texts.push_back(std::string(2 * (1 + std::min(line.depth, maxShownDepth)), ' ') + line.text);
    if (texts.back().size() <= maxColumn) column = std::max(column, texts.back().size());
  }
  for (std::size_t i = 0; i < lines.size(); ++i) {
    const std::size_t gap = texts[i].size() < column ? column - texts[i].size() : 0;
    console.printLine(fmt::format("{}{}  {:>5}  {}", texts[i], std::string(gap, ' '), lines[i].cost,
                                  wordOf(lines[i].cost)));
  }
}

/// The nodes as a flat list with their depths: a plan may be deeper than readers of JSON like.
nlohmann::json planJson(const PlannedSelect& select) {
  nlohmann::json nodes = nlohmann::json::array();
  if (select.good)
    for (const PlanLine& line : linesOf(select.plan))
      nodes.push_back({{"depth", line.depth},
                       {"kind", line.kind},
                       {"text", line.text},
                       {"cost", line.cost},
                       {"costWord", wordOf(line.cost)},
                       {"line", line.line}});
  return {{"line", select.step->line}, {"ok", select.good}, {"nodes", nodes}};
}

Exit plan(const PlanOptions& options, Console& console) {
  Diag diag;
  QuindleDocument document;
  std::vector<PlannedSelect> selects;
  if (loadQuindle(options.quindle, document, diag)) selects = planSelects(document, diag);
  if (options.json) {
    nlohmann::json list = nlohmann::json::array();
    for (const PlannedSelect& select : selects) list.push_back(planJson(select));
    console.printJson({{"name", document.name}, {"selects", list}, {"diagnostics", diagnosticsJson(diag)}});
  } else {
    console.report(diag);
    for (const PlannedSelect& select : selects)
      if (select.good) printPlan(document, select, console);
    if (selects.empty() && diag.errorCount == 0)
      console.note("This Quindle selects nothing, so there is no plan.");
  }
  return diag.errorCount == 0 ? Exit::Done : Exit::Failed;
}

} // namespace

void addPlanCommand(CLI::App& app, Session& session) {
  auto options = std::make_shared<PlanOptions>();
  CLI::App* verb = addVerb(app, "plan",
                           "Show the order in which conditions are worked out. They are "
                           "listed for each \"select\", with their costs.");
  verb->add_option("QUINDLE", options->quindle, quindleHelp)->required();
  verb->add_flag(
      "--json", options->json,
      "Print JSON: \"name\", \"selects\" with line, ok and nodes (depth, kind, text, cost, costWord, line) "
      "of each, and \"diagnostics\".");
  verb->footer("Example:\n  quindle plan examples/underwater-ground.quindle");
  verb->callback([options, &session] { session.exit = plan(*options, session.console); });
}

} // namespace Zamt::Host
