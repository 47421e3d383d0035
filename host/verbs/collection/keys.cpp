#include "host/session/Collection.h"
#include "host/verbs/options.h"
#include "host/verbs/texts.h"
#include "host/verbs/verbs.h"
#include "quindle/library/QuindleShortcuts.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <map>
#include <string>
#include <vector>

namespace Zamt::Host {

namespace {

/// The Quindles that ask for each key.
using KeyTable = std::map<std::string, std::vector<std::string>>;

KeyTable keyTable(const QuindleLibrary& library) {
  KeyTable table;
  for (const QuindleShortcut& shortcut : quindleShortcuts(library))
    table[shortcut.key].push_back(shortcut.name);
  return table;
}

std::string keysText(const KeyTable& table) {
  if (table.empty()) return {};
  std::vector<std::vector<std::string>> rows;
  for (const auto& [key, names] : table)
    rows.push_back({key, fmt::format("{}", fmt::join(names, ", ")),
                    names.size() > 1 ? "conflict: bound to none of them" : ""});
  return tableText({"KEY", "QUINDLE", ""}, rows);
}

Data keysData(const KeyTable& table) {
  Data::List keys;
  for (const auto& [key, names] : table)
    keys.push_back(Fields{{"key", key}, {"names", Data::list(names)}, {"conflict", names.size() > 1}});
  return Fields{{"keys", std::move(keys)}};
}

Answer listKeys(KeyTable table) {
  Diag diag;
  if (table.empty())
    diag.note("No Quindle asks for a key. One does with a line such as  shortcut \"Ctrl+Shift+G\".");
  return answerOf(partOf(std::move(diag), std::move(table), keysText, keysData));
}

/// Whether one key may be taken, and who has it.
struct Asked {
  std::string key;
  bool free = false;
  std::vector<std::string> names;
};

std::string askedText(const Asked& asked) {
  if (asked.free) return asked.key + " is free\n";
  return fmt::format("{} is taken by {}\n", asked.key, fmt::join(asked.names, ", "));
}

Data askedData(const Asked& asked) {
  return Fields{{"key", asked.key}, {"free", asked.free}, {"names", Data::list(asked.names)}};
}

Answer askForKey(const Request& request, const QuindleLibrary& library, const KeyTable& table) {
  const std::string& combination = request.text("free");
  const std::string key = normalizedShortcut(combination);
  if (key.empty())
    return refused(
        Status::Usage,
        fmt::format("\"{}\" names no key. Write modifiers and a key, as in Ctrl+Shift+G.", combination));
  const auto taken = table.find(key);
  Asked asked{key, isShortcutFree(library, combination, request.text("for")),
              taken == table.end() ? std::vector<std::string>() : taken->second};
  Answer answer;
  answer.status = asked.free ? Status::Done : Status::Failed;
  answer.parts.push_back(partOf({}, std::move(asked), askedText, askedData));
  return answer;
}

Answer keys(const Request& request, const Context& /*context*/) {
  const QuindleLibrary library = scanCollection();
  KeyTable table = keyTable(library);
  return request.has("free") ? askForKey(request, library, table) : listKeys(std::move(table));
}

} // namespace

Verb keysVerb() {
  return {
      .name = "keys",
      .summary = "List the keys that Quindles ask for. Those that several ask for are marked.",
      .footer = "Example:\n  quindle keys --free Ctrl+Shift+G",
      .options = {{.name = "free",
                   .help = "Say only whether this combination is free. The exit code is 1 if it is taken.",
                   .placeholder = "COMBINATION"},
                  {.name = "for",
                   .help = "The Quindle that is to have it: what it holds itself is free.",
                   .placeholder = "NAME",
                   .needs = {"free"},
                   .names = Option::Names::Entry},
                  jsonOption("Print JSON: \"keys\" with key, names and conflict of each, or with --free "
                             "key, free and names (of those that ask for it), and \"diagnostics\".")},
      .run = keys};
}

} // namespace Zamt::Host
