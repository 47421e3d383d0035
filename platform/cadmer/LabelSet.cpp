#include "cadmer/LabelSet.h"

#include <optional>
#include <string_view>
#include <vector>

// The text form. Fields are separated by one tab, lines by one line feed:
//
//   LabelSet
//   label <number> <red> <green> <blue> <alpha> <name> <description> {<flag> true|false}
//   selection <name> <number>
//
// Tab, line feed, carriage return, NUL and backslash inside a text are written \t \n \r \0 \\, so that a line
// stays a line in any editor; all other bytes stand for themselves. Quotes around texts would need the same
// escapes and a tokenizer on top.
namespace Zamt {
namespace {

constexpr std::string_view Heading = "LabelSet";
constexpr std::string_view LabelWord = "label";
constexpr std::string_view SelectionWord = "selection";

struct Escape {
  char plain;
  char letter;
};
constexpr Escape Escapes[] = {{'\t', 't'}, {'\n', 'n'}, {'\r', 'r'}, {'\0', '0'}, {'\\', '\\'}};

using Fields = std::vector<std::string>;

void appendField(std::string& line, std::string_view text) {
  line += '\t';
  for (const char byte : text) {
    const Escape* found = nullptr;
    for (const Escape& escape : Escapes)
      if (escape.plain == byte) found = &escape;
    if (found) {
      line += '\\';
      line += found->letter;
    } else {
      line += byte;
    }
  }
}

std::optional<std::string> unescaped(std::string_view text) {
  std::string plain;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] != '\\') {
      plain += text[i];
      continue;
    }
    if (++i == text.size()) return std::nullopt;
    const Escape* found = nullptr;
    for (const Escape& escape : Escapes)
      if (escape.letter == text[i]) found = &escape;
    if (!found) return std::nullopt;
    plain += found->plain;
  }
  return plain;
}

std::vector<std::string_view> split(std::string_view text, char separator) {
  std::vector<std::string_view> pieces;
  while (true) {
    const std::size_t end = text.find(separator);
    pieces.push_back(text.substr(0, end));
    if (end == std::string_view::npos) return pieces;
    text.remove_prefix(end + 1);
  }
}

std::optional<Fields> fieldsOf(std::string_view line) {
  Fields fields;
  for (const std::string_view piece : split(line, '\t')) {
    std::optional<std::string> field = unescaped(piece);
    if (!field) return std::nullopt;
    fields.push_back(std::move(*field));
  }
  return fields;
}

template <class T>
bool read(T& value, const std::string& field) {
  return VValueTrait<T>::setValueFromText(value, field);
}

bool readLabel(LabelSet& set, const Fields& fields) {
  constexpr std::size_t Color = 2;
  constexpr std::size_t Name = 6;
  constexpr std::size_t Flags = 8;
  if (fields.size() < Flags || fields.size() % 2 != 0) return false;
  Label label;
  if (!read(label.value, fields[1])) return false;
  for (std::size_t i = 0; i < label.color.size(); ++i)
    if (!read(label.color[i], fields[Color + i])) return false;
  label.name = fields[Name];
  label.description = fields[Name + 1];
  for (std::size_t i = Flags; i < fields.size(); i += 2)
    if (!read(label.flags[fields[i]], fields[i + 1])) return false;
  const std::int32_t number = label.value;
  return set.labels.emplace(number, std::move(label)).second;
}

bool readSelection(LabelSet& set, const Fields& fields) {
  std::int32_t number = 0;
  if (fields.size() != 3 || !read(number, fields[2])) return false;
  return set.selections.emplace(fields[1], number).second;
}

bool readLine(LabelSet& set, std::string_view line) {
  const std::optional<Fields> fields = fieldsOf(line);
  if (!fields) return false;
  if (fields->front() == LabelWord) return readLabel(set, *fields);
  if (fields->front() == SelectionWord) return readSelection(set, *fields);
  return false;
}

} // namespace

std::int32_t LabelSet::getSelectedValue(const std::string& name) const {
  const auto found = selections.find(name);
  return found == selections.end() ? -1 : found->second;
}

bool VValueTrait<LabelSet>::setValueFromText(LabelSet& set, const std::string& text) {
  if (text.empty()) {
    set = {};
    return true;
  }
  const std::vector<std::string_view> lines = split(text, '\n');
  if (lines.size() < 2 || lines.front() != Heading || !lines.back().empty()) return false;
  LabelSet result;
  for (std::size_t i = 1; i + 1 < lines.size(); ++i)
    if (!readLine(result, lines[i])) return false;
  set = std::move(result);
  return true;
}

std::string VValueTrait<LabelSet>::Text(const LabelSet& set) {
  if (set.labels.empty() && set.selections.empty()) return {};
  std::string text(Heading);
  text += '\n';
  for (const auto& [number, label] : set.labels) {
    text += LabelWord;
    appendField(text, VValueTrait<std::int32_t>::Text(number));
    for (const float part : label.color) appendField(text, VValueTrait<float>::Text(part));
    appendField(text, label.name);
    appendField(text, label.description);
    for (const auto& [flag, on] : label.flags) {
      appendField(text, flag);
      appendField(text, VValueTrait<bool>::Text(on));
    }
    text += '\n';
  }
  for (const auto& [name, number] : set.selections) {
    text += SelectionWord;
    appendField(text, name);
    appendField(text, VValueTrait<std::int32_t>::Text(number));
    text += '\n';
  }
  return text;
}

} // namespace Zamt
