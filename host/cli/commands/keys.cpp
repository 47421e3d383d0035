#include "host/cli/commands/commands.h"
#include "host/cli/entryTable.h"
#include "host/session/Collection.h"
#include "quindle/library/QuindleShortcuts.h"

#include <CLI/App.hpp>
#include <fmt/format.h>
#include <fmt/ranges.h>
#include <nlohmann/json.hpp>

#include <map>
#include <memory>
#include <string>
#include <vector>

namespace Zamt::Host {

namespace {

struct KeysOptions {
  std::string combination;
  std::string name;
  bool json = false;
};

using KeyTable = std::map<std::string, std::vector<std::string>>;

KeyTable keyTable(const QuindleLibrary& library) {
  KeyTable table;
  for (const QuindleShortcut& shortcut : quindleShortcuts(library))
    table[shortcut.key].push_back(shortcut.name);
  return table;
}

Exit showTable(const KeysOptions& options, const KeyTable& table, Console& console) {
  Diag diag;
  if (table.empty())
    diag.note("No Quindle asks for a key. One does with a line such as  shortcut \"Ctrl+Shift+G\".");
  if (options.json) {
    nlohmann::json keys = nlohmann::json::array();
    for (const auto& [key, names] : table)
      keys.push_back({{"key", key}, {"names", names}, {"conflict", names.size() > 1}});
    console.printJson({{"keys", keys}, {"diagnostics", diagnosticsJson(diag)}});
    return Exit::Done;
  }
  std::vector<std::vector<std::string>> rows;
  for (const auto& [key, names] : table)
    rows.push_back({key, fmt::format("{}", fmt::join(names, ", ")),
                    names.size() > 1 ? "conflict: bound to none of them" : ""});
  if (!rows.empty()) printTable({"KEY", "QUINDLE", ""}, rows, console);
  console.report(diag);
  return Exit::Done;
}

Exit answer(const KeysOptions& options, const QuindleLibrary& library, const KeyTable& table,
            Console& console) {
  const std::string key = normalizedShortcut(options.combination);
  if (key.empty()) {
    console.error(fmt::format("\"{}\" names no key. Write modifiers and a key, as in Ctrl+Shift+G.",
                              options.combination));
    return Exit::Usage;
  }
  const bool free = isShortcutFree(library, options.combination, options.name);
  const auto taken = table.find(key);
  const std::vector<std::string> names = taken == table.end() ? std::vector<std::string>() : taken->second;
  if (options.json)
    console.printJson({{"key", key}, {"free", free}, {"names", names}, {"diagnostics", diagnosticsJson({})}});
  else if (free)
    console.printLine(key + " is free");
  else
    console.printLine(fmt::format("{} is taken by {}", key, fmt::join(names, ", ")));
  return free ? Exit::Done : Exit::Failed;
}

Exit keys(const KeysOptions& options, bool asked, Console& console) {
  const QuindleLibrary library = scanCollection();
  const KeyTable table = keyTable(library);
  return asked ? answer(options, library, table, console) : showTable(options, table, console);
}

} // namespace

void addKeysCommand(CLI::App& app, Session& session) {
  auto options = std::make_shared<KeysOptions>();
  CLI::App* verb =
      addVerb(app, "keys", "List the keys that Quindles ask for. Those that several ask for are marked.");
  CLI::Option* free =
      verb->add_option("--free", options->combination,
                       "Say only whether this combination is free. The exit code is 1 if it is taken.");
  free->type_name("COMBINATION");
  verb->add_option("--for", options->name, "The Quindle that is to have it: what it holds itself is free.")
      ->type_name("NAME")
      ->needs(free);
  verb->add_flag("--json", options->json,
                 "Print JSON: \"keys\" with key, names and conflict of each, or with --free key, free and "
                 "names (of those that ask for it), and \"diagnostics\".");
  verb->footer("Example:\n  quindle keys --free Ctrl+Shift+G");
  verb->callback(
      [options, free, &session] { session.exit = keys(*options, free->count() > 0, session.console); });
}

} // namespace Zamt::Host
