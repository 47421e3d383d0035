#pragma once

#include "quindle/core/NestedSteps.h"
#include "quindle/core/QuindleDocument.h"

#include <array>
#include <string>
#include <vector>

/// Everything that a document holds, as text that shows the shape of its trees and where they stand: what
/// `toSource` leaves out. The records are taken apart by their `fieldsOf`, so that none is forgotten here. No
/// function here recurses, so that documents of any depth can be dumped.
namespace Zamt::Testing {

/// Whether a dump shows where things stand; without, documents from different texts can be compared.
enum class Positions { Shown, LeftOut };

inline std::string dumpPosition(std::int32_t line, std::int32_t column, Positions positions) {
  return positions == Positions::Shown ? '@' + std::to_string(line) + ':' + std::to_string(column) : "";
}

/// A value with its kind, as in Number 5, Text "a", Tuple (1, 2); a Number that is spelled otherwise than it
/// would be printed with both, as in Number 0.50 (0.5).
inline std::string dumpValue(const QuindleValue& root) {
  static constexpr std::array<const char*, 6> kinds{"None",    "Number", "Text",
                                                    "Boolean", "Tuple",  "Identifier"};
  const auto& [kind, boolValue, numberValue, textValue, items] = QuindleValue::fieldsOf(root);
  const std::string name = kinds.at(static_cast<std::size_t>(kind));
  if (kind == QuindleValue::Kind::None) return name;
  const std::string printed = QuindleValue::number(numberValue).toSource();
  const bool spelled = kind == QuindleValue::Kind::Number && !textValue.empty() && textValue != printed;
  return name + ' ' + root.toSource() + (spelled ? " (" + printed + ')' : "");
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
        const auto& [kind, value, name, op, operands, argNames, line, column] = QuindleExpr::fieldsOf(expr);
        out += '[';
        out += kinds.at(static_cast<std::size_t>(kind));
        if (kind != QuindleExpr::Kind::None) out += dumpPosition(line, column, positions);
        if (value.kind != QuindleValue::Kind::None || kind == QuindleExpr::Kind::Literal)
          out += ' ' + dumpValue(value);
        if (!name.empty()) out += ' ' + name;
        if (!op.empty()) out += ' ' + op;
      },
      [&out](const QuindleExpr& /*expr*/) { out += ']'; });
  return out;
}

/// A step without its blocks, on one line.
inline std::string dumpStepHead(const QuindleStep& step, Positions positions = Positions::Shown) {
  static constexpr std::array<const char*, 13> kinds{"Comment",  "Let",    "Create",  "Select", "Classify",
                                                     "Unparsed", "Set",    "Connect", "Call",   "If",
                                                     "ForEach",  "Report", "Run"};
  const auto& [kind, name, source, value, condition, args, argNames, color, classNumber, comment, body,
               elseBody, line, column] = QuindleStep::fieldsOf(step);
  std::string out = kinds.at(static_cast<std::size_t>(kind)) + dumpPosition(line, column, positions);
  const auto add = [&out](const char* field, bool isSet, const std::string& text) {
    if (isSet) out += std::string(" ") + field + '=' + text;
  };
  add("name", !name.empty(), name);
  add("source", !source.empty(), source);
  add("value", value.kind != QuindleExpr::Kind::None, dumpExpr(value, positions));
  add("condition", condition.kind != QuindleExpr::Kind::None, dumpExpr(condition, positions));
  for (std::size_t i = 0; i < args.size(); ++i)
    add("arg", true, argNames.at(i) + ':' + dumpExpr(args[i], positions));
  add("as", classNumber.kind != QuindleValue::Kind::None, dumpValue(classNumber));
  add("color", color.kind != QuindleValue::Kind::None, dumpValue(color));
  add("comment", kind == QuindleStep::Kind::Comment || !comment.empty(), '<' + comment + '>');
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
  const auto& [name, type, source, value, minimum, maximum, help, line, column] =
      QuindleParam::fieldsOf(param);
  std::string out = "param" + dumpPosition(line, column, positions) + ' ' + name + " : " + type;
  out += std::string(" = ") + sources.at(static_cast<std::size_t>(source)) + ' ' + dumpValue(value);
  out += " [" + dumpValue(minimum) + " .. " + dumpValue(maximum) + ']';
  if (!help.empty()) out += " <" + help + '>';
  return out + '\n';
}

inline std::string dumpTrigger(const QuindleTrigger& trigger, Positions positions = Positions::Shown) {
  static constexpr std::array<const char*, 4> occasions{"Run", "Key", "TileEnter", "Load"};
  const auto& [kind, key, steps, line] = QuindleTrigger::fieldsOf(trigger);
  std::string out =
      "on" + dumpPosition(line, 0, positions) + ' ' + occasions.at(static_cast<std::size_t>(kind));
  if (!key.empty()) out += " <" + key + '>';
  return out + '\n' + dumpSteps(steps, positions);
}

/// The whole document but its revision and listeners. Settings that are absent have no line.
inline std::string dumpDocument(const QuindleDocument& doc, Positions positions = Positions::Shown) {
  const auto& [name, description, category, icon, author, version, tags, shortcut, enabled, params, triggers,
               sourceFile, revision, listeners, nextListenerId] = QuindleDocument::fieldsOf(doc);
  std::string out = "quindle <" + name + "> from <" + sourceFile + ">\n";
  const auto add = [&out](const char* word, const std::string& text) {
    if (!text.empty()) out += std::string(word) + " <" + text + ">\n";
  };
  add("description", description);
  add("category", category);
  add("icon", icon);
  add("shortcut", shortcut);
  add("author", author);
  add("version", version);
  for (const std::string& tag : tags) out += "tag <" + tag + ">\n";
  if (!enabled) out += "disabled\n";
  for (const QuindleParam& param : params) out += dumpParam(param, positions);
  for (const QuindleTrigger& trigger : triggers) out += dumpTrigger(trigger, positions);
  return out;
}

} // namespace Zamt::Testing
