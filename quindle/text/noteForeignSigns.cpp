#include "quindle/text/noteForeignSigns.h"

#include "quindle/text/signWords.h"

#include <algorithm>
#include <array>
#include <string_view>
#include <utility>
#include <vector>

namespace Zamt {

namespace {

std::vector<std::string_view> linesOf(std::string_view text) {
  std::vector<std::string_view> lines;
  for (;;) {
    const std::size_t end = text.find('\n');
    lines.push_back(text.substr(0, end));
    if (end == std::string_view::npos) return lines;
    text.remove_prefix(end + 1);
  }
}

/// What follows a place, up to the end of its line; empty for a place that is not in the text.
std::string_view textAt(const std::vector<std::string_view>& lines, const Diag::Entry& entry) {
  if (entry.line < 1 || entry.column < 1) return {};
  const auto line = static_cast<std::size_t>(entry.line) - 1;
  const auto column = static_cast<std::size_t>(entry.column) - 1;
  if (line >= lines.size() || column > lines[line].size()) return {};
  return lines[line].substr(column);
}

/// Whether an expression was read up to the place of the fault, so that "=" will have been meant to compare:
/// it is also what people write behind the words of settings and parameters.
bool isBehindExpression(const std::string& message) {
  constexpr std::array<std::string_view, 3> starts{"Expected a step but found ", "Expected \"{\" but found ",
                                                   "Expected \")\" but found "};
  return std::any_of(starts.begin(), starts.end(),
                     [&](std::string_view start) { return message.starts_with(start); });
}

std::string noteOn(const SignWord& sign, const std::string& message) {
  if (sign.sign != "=")
    return "Write \"" + std::string(sign.word) + "\" where other languages have \"" + std::string(sign.sign) +
           "\".";
  if (!isBehindExpression(message)) return {};
  return "A comparison is written \"==\", and behind the name of an argument stands \":\".";
}

} // namespace

void noteForeignSigns(const std::string& text, Diag& diag) {
  const std::vector<std::string_view> lines = linesOf(text);
  std::vector<Diag::Entry> entries = std::exchange(diag.entries, {});
  for (Diag::Entry& entry : entries) {
    const SignWord* const sign =
        entry.severity == Diag::Severity::Error ? findSignWord(textAt(lines, entry)) : nullptr;
    diag.entries.push_back(std::move(entry));
    if (!sign) continue;
    const Diag::Entry& error = diag.entries.back();
    const std::string note = noteOn(*sign, error.message);
    if (!note.empty()) diag.at(Diag::Severity::Note, note, std::string(error.file), error.line, error.column);
  }
}

} // namespace Zamt
