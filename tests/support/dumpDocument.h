#pragma once

#include "quindle/core/NestedSteps.h"
#include "quindle/core/QuindleDocument.h"

#include <array>
#include <string>
#include <utility>
#include <vector>

/// Everything that a document holds, as text that shows the shape of its trees and where they stand: what
/// `toSource` leaves out. No function here recurses, so that documents of any depth can be dumped.
namespace Zamt::Testing {

/// Whether a dump shows where things stand; without, documents from different texts can be compared.
enum class Positions { Shown, LeftOut };

inline std::string dumpPosition(std::int32_t line, std::int32_t column, Positions positions) {
  return positions == Positions::Shown ? '@' + std::to_string(line) + ':' + std::to_string(column) : "";
}

/// A value with its kind, as in Number 5, Text "a", Tuple (1, 2).
inline std::string dumpValue(const QuindleValue& value) {
  static constexpr std::array<const char*, 6> kinds{"None",    "Number", "Text",
                                                    "Boolean", "Tuple",  "Identifier"};
  const std::string kind = kinds.at(static_cast<std::size_t>(value.kind));
  return value.kind == QuindleValue::Kind::None ? kind : kind + ' ' + value.toSource();
}

/// An expression in prefix form: [And@1:8 [Reference@1:8 a] [Literal@1:14 Number 5]].
inline std::string dumpExpr(const QuindleExpr& root, Positions positions = Positions::Shown) {
  static constexpr std::array<const char*, 8> kinds{"None", "Literal", "Reference", "Call",
                                                    "And",  "Or",      "Not",       "Compare"};
  std::string out;
  tree::each(
      root, [](const QuindleExpr& expr) -> const std::vector<QuindleExpr>& { return expr.operands; },
      [&](const QuindleExpr& expr, const tree::Place<QuindleExpr>& place) {
        if (place.parent) {
          const std::vector<std::string>& names = place.parent->argNames;
          out += ' ';
          if (place.index < names.size() && !names[place.index].empty()) out += names[place.index] + ": ";
        }
        out += '[';
        out += kinds.at(static_cast<std::size_t>(expr.kind));
        if (expr.kind != QuindleExpr::Kind::None) out += dumpPosition(expr.line, expr.column, positions);
        if (expr.kind == QuindleExpr::Kind::Literal) out += ' ' + dumpValue(expr.value);
        if (!expr.name.empty()) out += ' ' + expr.name;
        if (!expr.op.empty()) out += ' ' + expr.op;
      },
      [&out](const QuindleExpr& /*expr*/) { out += ']'; });
  return out;
}

/// A step without its blocks, on one line.
inline std::string dumpStepHead(const QuindleStep& step, Positions positions = Positions::Shown) {
  static constexpr std::array<const char*, 13> kinds{"Comment",  "Let",    "Create",  "Select", "Classify",
                                                     "Unparsed", "Set",    "Connect", "Call",   "If",
                                                     "ForEach",  "Report", "Run"};
  std::string out =
      kinds.at(static_cast<std::size_t>(step.kind)) + dumpPosition(step.line, step.column, positions);
  const auto add = [&out](const char* field, bool isSet, const std::string& text) {
    if (isSet) out += std::string(" ") + field + '=' + text;
  };
  add("name", !step.name.empty(), step.name);
  add("source", !step.source.empty(), step.source);
  add("value", step.value.kind != QuindleExpr::Kind::None, dumpExpr(step.value, positions));
  add("condition", step.condition.kind != QuindleExpr::Kind::None, dumpExpr(step.condition, positions));
  for (std::size_t i = 0; i < step.args.size(); ++i)
    add("arg", true, step.argNames.at(i) + ':' + dumpExpr(step.args[i], positions));
  add("as", step.classNumber.kind != QuindleValue::Kind::None, dumpValue(step.classNumber));
  add("color", step.color.kind != QuindleValue::Kind::None, dumpValue(step.color));
  add("comment", step.kind == QuindleStep::Kind::Comment, '<' + step.comment + '>');
  return out;
}

/// One line a step, a block two blanks further in than its step, an "Else" between the blocks.
inline std::string dumpSteps(const std::vector<QuindleStep>& steps, Positions positions = Positions::Shown) {
  std::string out;
  eachStep(steps, [&](const QuindleStep& step, const StepPlace& place) {
    const std::string indent(place.depth * 2, ' ');
    if (startsElse(place)) out += indent.substr(2) + "Else\n";
    out += indent + dumpStepHead(step, positions) + '\n';
  });
  return out;
}

inline std::string dumpParam(const QuindleParam& param, Positions positions = Positions::Shown) {
  static constexpr std::array<const char*, 4> sources{"Written", "Pick", "Brush", "Active"};
  std::string out =
      "param" + dumpPosition(param.line, param.column, positions) + ' ' + param.name + " : " + param.type;
  out += std::string(" = ") + sources.at(static_cast<std::size_t>(param.defaultSource)) + ' ' +
         dumpValue(param.defaultValue);
  out += " [" + dumpValue(param.minimum) + " .. " + dumpValue(param.maximum) + ']';
  if (!param.help.empty()) out += " <" + param.help + '>';
  return out + '\n';
}

/// The whole document but its revision and listeners. Settings that are absent have no line.
inline std::string dumpDocument(const QuindleDocument& doc, Positions positions = Positions::Shown) {
  static constexpr std::array<const char*, 4> occasions{"Run", "Key", "TileEnter", "Load"};
  std::string out = "quindle <" + doc.name + "> from <" + doc.sourceFile + ">\n";
  const std::array<std::pair<const char*, const std::string*>, 6> settings{{{"description", &doc.description},
                                                                            {"category", &doc.category},
                                                                            {"icon", &doc.icon},
                                                                            {"shortcut", &doc.shortcut},
                                                                            {"author", &doc.author},
                                                                            {"version", &doc.version}}};
  for (const auto& [word, text] : settings)
    if (!text->empty()) out += std::string(word) + " <" + *text + ">\n";
  for (const std::string& tag : doc.tags) out += "tag <" + tag + ">\n";
  if (!doc.enabled) out += "disabled\n";
  for (const QuindleParam& param : doc.params) out += dumpParam(param, positions);
  for (const QuindleTrigger& trigger : doc.triggers) {
    out += std::string("on") + dumpPosition(trigger.line, 0, positions) + ' ' +
           occasions.at(static_cast<std::size_t>(trigger.kind));
    if (!trigger.key.empty()) out += " <" + trigger.key + '>';
    out += '\n' + dumpSteps(trigger.steps, positions);
  }
  return out;
}

} // namespace Zamt::Testing
