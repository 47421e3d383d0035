#include "host/cli/entryTable.h"

#include "host/session/Collection.h"
#include "quindle/library/entryNames.h"
#include "quindle/library/keysOf.h"

#include <fmt/format.h>
#include <fmt/ranges.h>
#include <nlohmann/json.hpp>

#include <algorithm>

namespace Zamt::Host {

namespace {

constexpr std::string_view gap = "  ";

/// How many columns a terminal gives to a text in UTF-8: one a character, since names are in plain scripts.
std::size_t widthOf(std::string_view text) {
  return static_cast<std::size_t>(std::count_if(
      text.begin(), text.end(), [](char c) { return (static_cast<unsigned char>(c) & 0xc0U) != 0x80U; }));
}

std::string printable(std::string text) {
  for (char& c : text)
    if (static_cast<unsigned char>(c) < ' ' || c == 0x7f) c = '?';
  return text;
}

/// "ready", "off", or why the Quindle can't be run, with its file where that has to be looked at.
std::string stateOf(const QuindleLibrary& library, const QuindleLibraryEntry& entry) {
  if (!entry.usable) return fmt::format("not usable, {}: {}", entry.path, entry.error);
  if (const QuindleLibraryEntry* const first = library.find(entry.document.name); first != &entry)
    return fmt::format("hidden, {}: {} has the same name and comes first", entry.path, first->path);
  return entry.document.enabled ? "ready" : "off";
}

nlohmann::json entryJson(const QuindleLibrary& library, const QuindleLibraryEntry& entry) {
  const QuindleDocument& document = entry.document;
  return {{"name", displayName(entry)},
          {"category", document.category},
          {"description", document.description},
          {"tags", document.tags},
          {"keys", keysOf(document)},
          {"path", entry.path},
          {"own", isOwn(entry)},
          {"usable", entry.usable},
          {"enabled", document.enabled},
          {"first", library.find(document.name) == &entry},
          {"error", entry.error}};
}

} // namespace

void printTable(const std::vector<std::string_view>& titles,
                const std::vector<std::vector<std::string>>& rows, Console& console) {
  std::vector<std::vector<std::string>> lines{{titles.begin(), titles.end()}};
  for (const std::vector<std::string>& row : rows) {
    std::vector<std::string>& line = lines.emplace_back();
    for (const std::string& cell : row) line.push_back(printable(cell));
  }
  std::vector<std::size_t> widths(titles.size());
  for (const std::vector<std::string>& line : lines)
    for (std::size_t i = 0; i < line.size(); ++i) widths[i] = std::max(widths[i], widthOf(line[i]));
  for (const std::vector<std::string>& line : lines) {
    std::string text;
    for (std::size_t i = 0; i < line.size(); ++i) {
      text += line[i];
      if (i + 1 < line.size()) (text += std::string(widths[i] - widthOf(line[i]), ' ')) += gap;
    }
    text.erase(text.find_last_not_of(' ') + 1);
    console.printLine(text);
  }
}

void printEntries(const QuindleLibrary& library, const std::vector<const QuindleLibraryEntry*>& entries,
                  const Diag& diag, bool json, Console& console) {
  if (json) {
    nlohmann::json quindles = nlohmann::json::array();
    for (const QuindleLibraryEntry* const entry : entries) quindles.push_back(entryJson(library, *entry));
    console.printJson({{"quindles", quindles}, {"diagnostics", diagnosticsJson(diag)}});
    return;
  }
  std::vector<std::vector<std::string>> rows;
  rows.reserve(entries.size());
  for (const QuindleLibraryEntry* const entry : entries)
    rows.push_back({displayName(*entry), entry->document.category,
                    fmt::format("{}", fmt::join(keysOf(entry->document), " ")),
                    isOwn(*entry) ? "yours" : "installed", stateOf(library, *entry)});
  if (!rows.empty()) printTable({"NAME", "CATEGORY", "KEYS", "FROM", "STATE"}, rows, console);
  console.report(diag);
}

} // namespace Zamt::Host
