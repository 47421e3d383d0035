#include "quindle/text/writeQuindle.h"

#include "quindle/core/AsciiText.h"
#include "quindle/core/NestedSteps.h"
#include "quindle/text/FileWords.h"
#include "quindle/text/StepKeyword.h"
#include "quindle/text/writeWithin.h"

#include <algorithm>
#include <cstdint>
#include <limits>
#include <string_view>
#include <vector>

namespace Zamt {

namespace {

constexpr std::string_view indent = "    ";

std::string quoted(const std::string& text) { return QuindleValue::text(text).toSource(); }

/// The word of `value` in one of the tables of words; empty if it has none.
template <class Table, class Value>
std::string_view wordOf(const Table& table, Value value) {
  for (const auto& [word, its] : table)
    if (its == value) return word;
  return {};
}

std::string range(const QuindleParam& param) {
  if (param.minimum.kind == QuindleValue::Kind::None && param.maximum.kind == QuindleValue::Kind::None)
    return {};
  return " [" + param.minimum.toSource() + " .. " + param.maximum.toSource() + ']';
}

std::string defaultOf(const QuindleParam& param) {
  if (param.defaultSource != QuindleParam::DefaultSource::Written)
    return " = " + std::string(wordOf(defaultSources, param.defaultSource));
  return param.defaultValue.kind == QuindleValue::Kind::None ? "" : " = " + param.defaultValue.toSource();
}

std::string arguments(const QuindleStep& step) {
  std::string out = "(";
  for (std::size_t i = 0; i < step.args.size(); ++i) {
    if (i > 0) out += ", ";
    if (i < step.argNames.size() && !step.argNames[i].empty()) out += step.argNames[i] + ": ";
    out += step.args[i].toSource();
  }
  return out += ')';
}

/// The target of a "call", with its action in quotes if it is no word. The action stands behind the last dot,
/// unless that would leave the reader an object that is no word: then the action begins earlier.
std::string callTarget(const std::string& name) {
  std::size_t dot = name.rfind('.');
  if (dot == std::string::npos) return name;
  const auto isWordByte = [](char c) { return isNameByte(c) || c == '.'; };
  const auto wordEnd = std::find_if_not(name.begin(), name.end(), isWordByte) - name.begin();
  const std::size_t dotInWord = name.rfind('.', static_cast<std::size_t>(wordEnd));
  if (dotInWord != std::string::npos) dot = dotInWord;
  const std::string action = name.substr(dot + 1);
  if (std::all_of(action.begin(), action.end(), isNameByte)) return name;
  return name.substr(0, dot + 1) + quoted(action);
}

/// Writes the steps of triggers until their indentation would take more bytes than it may.
class StepWriter {
public:
  StepWriter(std::string& out, std::uint64_t maxIndentation) : out_(out), indentationLeft_(maxIndentation) {}

  void write(const std::vector<QuindleStep>& steps) {
    eachStep(
        steps, [this](const QuindleStep& step, const StepPlace& place) { enter(step, place); },
        [this](const QuindleStep& step) {
          if (!full_ && hasBlocks(step.kind)) closeBlock();
        });
  }

  /// Whether something was left out.
  bool isFull() const { return full_; }

private:
  void enter(const QuindleStep& step, const StepPlace& place) {
    if (full_) return;
    if (startsElse(place)) {
      closeBlock();
      startLine();
      out_ += "else";
      openBlock();
    }
    if (step.kind == QuindleStep::Kind::Comment) {
      writeComment(step.comment);
      return;
    }
    startLine();
    writeHead(step);
    if (hasBlocks(step.kind))
      openBlock();
    else
      out_ += '\n';
  }

  void startLine() {
    const std::size_t blanks = level_ * indent.size();
    full_ = full_ || blanks > indentationLeft_;
    if (full_) return;
    indentationLeft_ -= blanks;
    out_.append(blanks, ' ');
  }

  void openBlock() {
    out_ += " {\n";
    ++level_;
  }

  void closeBlock() {
    --level_;
    startLine();
    out_ += "}\n";
  }

  // Only a comment that was not read from a text has several lines; its second would be read as steps.
  void writeComment(std::string_view comment) {
    do {
      const std::size_t newline = comment.find('\n');
      startLine();
      out_ += "# ";
      out_ += comment.substr(0, newline);
      out_ += '\n';
      comment = newline == std::string_view::npos ? std::string_view() : comment.substr(newline + 1);
    } while (!comment.empty());
  }

  void writeHead(const QuindleStep& step) {
    using Kind = QuindleStep::Kind;
    out_ += stepKeyword(step.kind == Kind::Unparsed ? Kind::Set : step.kind);
    out_ += ' ';
    switch (step.kind) {
    case Kind::Let:
    case Kind::Create:
    case Kind::Set:
    case Kind::Unparsed: out_ += step.name + " = " + step.value.toSource(); break;
    case Kind::Select:
    case Kind::If: out_ += step.condition.toSource(); break;
    case Kind::Classify: writeClassify(step); break;
    case Kind::Connect: out_ += step.name + " <- " + step.source; break;
    case Kind::Call: out_ += callTarget(step.name) + arguments(step); break;
    case Kind::Run: out_ += quoted(step.name) + arguments(step); break;
    case Kind::ForEach: out_ += "each " + step.name + " in " + step.value.toSource(); break;
    case Kind::Report: out_ += step.value.toSource(); break;
    case Kind::Comment: break;
    }
  }

  void writeClassify(const QuindleStep& step) {
    out_ += "into " + step.value.toSource();
    if (step.classNumber.kind != QuindleValue::Kind::None) out_ += " as " + step.classNumber.toSource();
    if (step.color.kind != QuindleValue::Kind::None) out_ += " color " + step.color.toSource();
  }

  std::string& out_;
  std::uint64_t indentationLeft_;
  std::size_t level_ = 2; ///< Steps stand in a trigger, which stands in the file.
  bool full_ = false;
};

void writeSettings(const QuindleDocument& doc, std::string& out) {
  const auto writeSetting = [&out](std::string_view word, const std::string& value) {
    out += indent;
    out += word;
    out += ' ' + value + '\n';
  };
  for (const TextSetting& setting : textSettings)
    if (const std::string& text = doc.*setting.field; !text.empty()) writeSetting(setting.word, quoted(text));
  std::string tags;
  for (const std::string& tag : doc.tags) tags += (tags.empty() ? "" : ", ") + quoted(tag);
  if (!tags.empty()) writeSetting("tags", tags);
  if (!doc.enabled) writeSetting("enabled", "false");
}

void writeParam(const QuindleParam& param, std::string& out) {
  out += indent;
  out += "param " + param.name + " : " + param.type + defaultOf(param) + range(param);
  if (!param.help.empty()) out += ' ' + quoted(param.help);
  out += '\n';
}

void writeTrigger(const QuindleTrigger& trigger, StepWriter& steps, std::string& out) {
  out += indent;
  out += "on ";
  out += wordOf(occasions, trigger.kind);
  if (trigger.kind == QuindleTrigger::Kind::Key) out += ' ' + quoted(trigger.key);
  out += " {\n";
  steps.write(trigger.steps);
  out += indent;
  out += "}\n";
}

} // namespace

bool writeWithin(const QuindleDocument& doc, std::uint64_t maxIndentation, std::string& out) {
  out = "quindle " + quoted(doc.name) + " {\n";
  const std::size_t headLength = out.size();
  writeSettings(doc, out);
  if (out.size() > headLength && !doc.params.empty()) out += '\n';
  for (const QuindleParam& param : doc.params) writeParam(param, out);
  bool needsSpace = out.size() > headLength;
  StepWriter steps(out, maxIndentation);
  for (const QuindleTrigger& trigger : doc.triggers) {
    if (needsSpace) out += '\n';
    writeTrigger(trigger, steps, out);
    needsSpace = true;
  }
  out += "}\n";
  return !steps.isFull();
}

std::string writeQuindle(const QuindleDocument& doc) {
  std::string out;
  writeWithin(doc, std::numeric_limits<std::uint64_t>::max(), out);
  return out;
}

} // namespace Zamt
