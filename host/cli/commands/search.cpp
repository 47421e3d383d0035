#include "host/cli/commands/commands.h"
#include "host/cli/entryTable.h"
#include "host/session/Collection.h"

#include <CLI/App.hpp>
#include <fmt/format.h>

#include <memory>
#include <string>
#include <vector>

namespace Zamt::Host {

namespace {

struct SearchOptions {
  std::string query;
  bool json = false;
};

Exit search(const SearchOptions& options, Console& console) {
  const QuindleLibrary library = scanCollection();
  const std::vector<const QuindleLibraryEntry*> found = library.search(options.query);
  Diag diag;
  if (found.empty())
    diag.note(
        fmt::format("No Quindle holds \"{}\" in its name, description, category or tags.", options.query));
  printEntries(library, found, diag, options.json, console);
  return found.empty() ? Exit::Failed : Exit::Done;
}

} // namespace

void addSearchCommand(CLI::App& app, Session& session) {
  auto options = std::make_shared<SearchOptions>();
  CLI::App* verb = addVerb(app, "search",
                           "List the Quindles that hold a text. It is looked for in "
                           "their names, descriptions, categories and tags.");
  verb->add_option("TEXT", options->query, "What to look for; the case of letters does not matter.")
      ->required();
  verb->add_flag("--json", options->json, entriesJsonHelp);
  verb->footer("The exit code is 1 when nothing was found.\nExample:\n  quindle search water");
  verb->callback([options, &session] { session.exit = search(*options, session.console); });
}

} // namespace Zamt::Host
