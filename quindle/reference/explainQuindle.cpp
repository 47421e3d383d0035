#include "quindle/reference/explainQuindle.h"

#include "quindle/core/Diag.h"
#include "quindle/core/QuindleParamTypes.h"
#include "quindle/core/Tree.h"
#include "quindle/plan/unguarded.h"
#include "quindle/reference/runTargets.h"

#include <algorithm>
#include <cstddef>

namespace Zamt {

namespace {

using RunTargets = std::unordered_map<std::string, RunTarget>;

/// How far a nested condition is indented: two blanks a level, down to this one. Nobody reads further, and
/// without an end the text would grow with the square of the depth.
constexpr std::size_t deepestIndent = 64;

constexpr const char* planIndent = "       ";

bool isGiven(const QuindleValue& value) { return value.kind != QuindleValue::Kind::None; }

std::string typePhrase(const std::string& word) {
  const QuindleParamType* const type = findQuindleParamType(word);
  return type && !type->phrase.empty() ? std::string(type->phrase) : "a " + word;
}

std::string valuePhrase(const QuindleParam& param) {
  using Source = QuindleParam::DefaultSource;
  switch (param.defaultSource) {
  case Source::Brush: return "taken from the brush you are painting with";
  case Source::Active: return "whatever is currently active";
  case Source::Pick: return "you are asked for it when it runs";
  case Source::Written: break;
  }
  return isGiven(param.defaultValue) ? "normally " + param.defaultValue.toSource()
                                     : "no default, so it has to be given";
}

std::string paramLines(const QuindleParam& param) {
  std::string out = "  " + param.name + " - " + typePhrase(param.type) + ", " + valuePhrase(param);
  if (isGiven(param.minimum) && isGiven(param.maximum))
    out += ", between " + param.minimum.toSource() + " and " + param.maximum.toSource();
  out += '\n';
  if (!param.help.empty()) out += "      " + param.help + '\n';
  return out;
}

std::string conditionText(const QuindlePlanNode& condition) {
  return (condition.negated ? "the opposite of: " : "") + condition.operation->summary;
}

/// The plan as nested lists, one line a node.
std::string planLines(const QuindlePlanNode& plan) {
  std::string out;
  tree::each(
      plan, [](const QuindlePlanNode& node) -> const auto& { return node.children; },
      [&out](const QuindlePlanNode& node, const tree::Place<QuindlePlanNode>& place) {
        out += planIndent;
        out.append(2 * std::min(place.depth, deepestIndent), ' ');
        switch (node.kind) {
        case QuindlePlanNode::Kind::Condition: out += "- " + conditionText(node) + '\n'; break;
        case QuindlePlanNode::Kind::And: out += "all of these, in this order:\n"; break;
        case QuindlePlanNode::Kind::Or: out += "any one of these:\n"; break;
        }
      });
  return out;
}

std::string selectText(const QuindleStep& step, const std::string& file) {
  QuindlePlanNode plan;
  Diag diag;
  if (!Unguarded::planPredicate(step.condition, plan, diag, file))
    return std::string("selects the points by a condition that does not make sense:\n") + planIndent +
           diag.firstError() + '\n';
  if (plan.kind == QuindlePlanNode::Kind::Condition)
    return "selects the points by one condition: " + conditionText(plan) + '\n';
  std::string out = "selects the points matching:\n" + planLines(plan);
  if (plan.kind == QuindlePlanNode::Kind::And)
    out += std::string(planIndent) +
           "(the cheapest condition runs first, so the expensive ones only ever see the points that got past "
           "it)\n";
  return out;
}

std::string classifyText(const QuindleStep& step) {
  std::string out = "puts them into the class " + step.value.toSource();
  if (isGiven(step.classNumber)) out += ", which is class " + step.classNumber.toSource();
  return out + ", creating it if the data has no such class yet\n";
}

std::string counted(std::size_t count, const std::string& noun) {
  return std::to_string(count) + ' ' + noun + (count == 1 ? "" : "s");
}

std::string ifText(const QuindleStep& step) {
  std::string out = "if " + step.condition.toSource() + ", does " + counted(step.body.size(), "step");
  if (!step.elseBody.empty()) out += ", otherwise " + counted(step.elseBody.size(), "other step");
  return out + '\n';
}

std::string runText(const QuindleStep& step, const RunTargets& targets) {
  const std::string out = "runs the Quindle \"" + step.name + '"';
  const auto known = targets.find(step.name);
  if (known == targets.end()) return out + ", which cannot be found from here\n";
  const RunTarget& target = known->second;
  if (!target.found)
    return out +
           (target.why.empty() ? ", which cannot be found from here"
                               : ", which cannot be run: " + target.why) +
           '\n';
  return out + (target.changesData ? ", which changes the data\n" : "\n") +
         (target.description.empty() ? "" : "      " + target.description + '\n');
}

std::string stepText(const QuindleStep& step, const std::string& file, const RunTargets& targets) {
  using Kind = QuindleStep::Kind;
  switch (step.kind) {
  case Kind::Let: return "works out " + step.name + " as " + step.value.toSource() + '\n';
  case Kind::Create: return "makes " + step.name + ", a " + step.value.toSource() + '\n';
  case Kind::Select: return selectText(step, file);
  case Kind::Classify: return classifyText(step);
  case Kind::Set: return "sets " + step.name + " to " + step.value.toSource() + '\n';
  case Kind::Connect: return "attaches " + step.name + " to " + step.source + '\n';
  case Kind::Call: return "triggers " + step.name + '\n';
  case Kind::If: return ifText(step);
  case Kind::Report: return "says " + step.value.toSource() + '\n';
  case Kind::Run: return runText(step, targets);
  case Kind::Comment:
  case Kind::ForEach:
  case Kind::Unparsed: break;
  }
  return "(a step of a kind that cannot be run yet)\n";
}

std::string stepLines(const QuindleDocument& doc, const std::vector<QuindleStep>& steps,
                      const QuindleResolver& resolver) {
  const RunTargets targets = runTargets(steps, resolver);
  std::string out;
  std::size_t number = 0;
  for (const QuindleStep& step : steps)
    if (step.kind != QuindleStep::Kind::Comment)
      out += "  " + std::to_string(++number) + ". " + stepText(step, doc.sourceFile, targets);
  return out;
}

} // namespace

std::string explainQuindle(const QuindleDocument& doc, const QuindleResolver& resolver) {
  std::string out = '"' + doc.name + '"' + (doc.enabled ? "\n" : "  (switched off)\n");
  if (!doc.description.empty()) out += doc.description + '\n';
  if (!doc.shortcut.empty()) out += "Bound to " + doc.shortcut + ".\n";
  if (!doc.params.empty()) out += "\nIt needs:\n";
  for (const QuindleParam& param : doc.params) out += paramLines(param);
  const QuindleTrigger* const trigger = doc.runTrigger();
  if (!trigger) return out + "\nNothing runs it: it has no trigger.\n";
  return out + "\nWhen it runs:\n" + stepLines(doc, trigger->steps, resolver);
}

} // namespace Zamt
