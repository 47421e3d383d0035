#include "host/cli/commands/commands.h"
#include "host/session/Collection.h"
#include "quindle/library/QuindleFiles.h"
#include "quindle/library/entryNames.h"

#include <CLI/App.hpp>
#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include <memory>
#include <string>

namespace Zamt::Host {

namespace {

struct DeleteOptions {
  std::string name;
  bool json = false;
};

/// The sentence about the Quindle that goes by that name now.
std::string whatCameBack(const std::string& name, std::string& path) {
  const QuindleLibrary library = scanCollection();
  const QuindleLibraryEntry* const entry = findQuindleLoosely(library, name);
  if (entry == nullptr) return {};
  path = entry->path;
  return fmt::format("\"{}\" is now the {}, {}", displayName(*entry),
                     isOwn(*entry) ? "other one of yours" : "installed one again", path);
}

Exit remove(const DeleteOptions& options, Console& console) {
  Diag diag;
  std::string file;
  std::string revealedFile;
  bool revealed = false;
  const bool good =
      findInCollection(scanCollection(), options.name, diag) != nullptr &&
      deleteQuindle(userQuindleDirectory(), quindleSearchPath(), options.name, file, revealed, diag);
  const std::string cameBack = good && revealed ? whatCameBack(options.name, revealedFile) : std::string();
  if (options.json) {
    console.printJson(
        {{"deleted", good ? file : ""}, {"revealed", revealedFile}, {"diagnostics", diagnosticsJson(diag)}});
  } else {
    console.report(diag);
    if (good) console.printLine("deleted " + file);
    if (!cameBack.empty()) console.printLine(cameBack);
  }
  return good ? Exit::Done : Exit::Failed;
}

} // namespace

void addDeleteCommand(CLI::App& app, Session& session) {
  auto options = std::make_shared<DeleteOptions>();
  CLI::App* verb =
      addVerb(app, "delete", "Delete a Quindle of your own. An installed one of the same name comes back.");
  verb->add_option("NAME", options->name, "Its name; the case of letters does not matter.")->required();
  verb->add_flag("--json", options->json,
                 "Print JSON: \"deleted\" (its file), \"revealed\" (the file that goes by the name now) and "
                 "\"diagnostics\".");
  verb->footer("Example:\n  quindle delete \"Isolated noise\"");
  verb->callback([options, &session] { session.exit = remove(*options, session.console); });
}

} // namespace Zamt::Host
