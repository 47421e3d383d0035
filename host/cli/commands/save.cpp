#include "host/cli/commands/commands.h"
#include "host/session/Collection.h"
#include "host/session/QuindleSource.h"
#include "quindle/check/checkQuindle.h"
#include "quindle/library/QuindleFiles.h"
#include "quindle/text/parseQuindle.h"

#include <CLI/App.hpp>
#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include <memory>
#include <string>

namespace Zamt::Host {

namespace {

struct SaveOptions {
  std::string file;
  bool json = false;
};

/// What became of a text that was to be saved.
struct Kept {
  QuindleDocument document; ///< Its `sourceFile` is where it went.
  std::string hides;        ///< The installed file of the same name; empty if there is none.
  bool replaced = false;    ///< An older text of the user's was there.
  bool good = false;
};

/// What the name led to before.
void lookBefore(const std::string& name, Kept& kept) {
  const QuindleLibrary library = scanCollection();
  const QuindleLibraryEntry* const entry = library.find(name);
  if (entry == nullptr) return;
  if (!isOwn(*entry)) kept.hides = entry->path;
  kept.replaced = entry->path == quindleFileName(userQuindleDirectory(), name);
}

/// Another file of the user's may bear the name too, under a file name of its own.
void warnIfHidden(const QuindleDocument& document, Diag& diag) {
  const QuindleLibrary library = scanCollection();
  const QuindleLibraryEntry* const entry = library.find(document.name);
  if (entry != nullptr && entry->path != document.sourceFile)
    diag.warning(
        fmt::format("{} has the same name and comes first. Delete that file to use this one.", entry->path),
        document.sourceFile);
}

Kept keep(const std::string& file, Diag& diag) {
  QuindleSource source;
  QuindleDocument document;
  Kept kept;
  // Read here first, so that diagnostics name the file that the user wrote.
  if (!readQuindleSource(file, source, diag) || !parseQuindle(source.text, source.label, document, diag) ||
      !checkQuindle(document, diag) || !hasOwnPlace(document.name, diag))
    return kept;
  lookBefore(document.name, kept);
  Diag failure;
  kept.good = saveQuindle(userQuindleDirectory(), source.text, kept.document, failure);
  if (kept.good)
    warnIfHidden(kept.document, diag);
  else
    diag.absorb(failure);
  return kept;
}

Exit save(const SaveOptions& options, Console& console) {
  Diag diag;
  const Kept kept = keep(options.file, diag);
  if (options.json) {
    console.printJson({{"name", kept.document.name},
                       {"path", kept.good ? kept.document.sourceFile : ""},
                       {"hides", kept.hides},
                       {"diagnostics", diagnosticsJson(diag)}});
    return kept.good ? Exit::Done : Exit::Failed;
  }
  console.report(diag);
  if (kept.good)
    console.printLine(fmt::format("\"{}\" is saved as {}{}", kept.document.name, kept.document.sourceFile,
                                  kept.replaced ? ", in place of the one before" : ""));
  if (kept.good && !kept.hides.empty())
    console.printLine(fmt::format("It now stands in front of the installed one, {}", kept.hides));
  return kept.good ? Exit::Done : Exit::Failed;
}

} // namespace

void addSaveCommand(CLI::App& app, Session& session) {
  auto options = std::make_shared<SaveOptions>();
  CLI::App* verb = addVerb(
      app, "save",
      "Keep a Quindle in the collection. It goes by the name inside it, and replaces your own of that name.");
  verb->add_option("FILE", options->file, "The file that holds it, or - for standard input.")->required();
  verb->add_flag("--json", options->json,
                 "Print JSON: \"name\", \"path\", \"hides\" (the installed file of that name) and "
                 "\"diagnostics\".");
  verb->footer("A Quindle with errors is not saved.\nExample:\n  quindle save my.quindle");
  verb->callback([options, &session] { session.exit = save(*options, session.console); });
}

} // namespace Zamt::Host
