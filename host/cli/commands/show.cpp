#include "host/cli/commands/commands.h"
#include "host/session/Collection.h"
#include "host/session/QuindleSource.h"

#include <CLI/App.hpp>
#include <nlohmann/json.hpp>

#include <memory>
#include <string>

namespace Zamt::Host {

namespace {

struct ShowOptions {
  std::string name;
  bool path = false;
  bool json = false;
};

Exit show(const ShowOptions& options, Console& console) {
  Diag diag;
  const QuindleLibrary library = scanCollection();
  const QuindleLibraryEntry* const entry = findInCollection(library, options.name, diag);
  QuindleSource source;
  if (entry != nullptr && !options.path) readQuindleSource(entry->path, source, diag);
  if (entry != nullptr && !entry->usable && diag.errorCount == 0) diag.warning(entry->error, entry->path);
  if (options.json) {
    console.printJson({{"path", entry == nullptr ? "" : entry->path},
                       {"text", source.text},
                       {"diagnostics", diagnosticsJson(diag)}});
  } else {
    if (entry != nullptr && options.path) console.printLine(entry->path);
    console.print(source.text);
    console.report(diag);
  }
  return diag.errorCount == 0 ? Exit::Done : Exit::Failed;
}

} // namespace

void addShowCommand(CLI::App& app, Session& session) {
  auto options = std::make_shared<ShowOptions>();
  CLI::App* verb = addVerb(app, "show", "Print the text of a Quindle of the collection.");
  verb->add_option("NAME", options->name, "Its name; the case of letters does not matter.")->required();
  verb->add_flag("--path", options->path, "Print the path of its file instead.");
  verb->add_flag("--json", options->json, "Print JSON: \"path\", \"text\" and \"diagnostics\".");
  verb->footer("Example:\n  quindle show \"Isolated noise\" > my.quindle");
  verb->callback([options, &session] { session.exit = show(*options, session.console); });
}

} // namespace Zamt::Host
