#include "host/cli/switchQuindle.h"

#include "files/writeWholeFile.h"
#include "host/session/Collection.h"
#include "host/session/QuindleSource.h"
#include "quindle/library/QuindleFiles.h"
#include "quindle/library/entryNames.h"
#include "quindle/text/parseQuindle.h"

#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include <span>

namespace Zamt::Host {

namespace {

/// Whether the text says what was wanted: the edit goes by lines, which not every layout suits.
bool says(const std::string& text, const std::string& name, bool enabled) {
  QuindleDocument document;
  Diag dropped;
  return parseQuindle(text, {}, document, dropped) && document.name == name && document.enabled == enabled;
}

/// The text of the entry with the switch set. False with an error when that can't be.
bool editedText(const QuindleLibraryEntry& entry, bool enabled, std::string& text, Diag& diag) {
  if (!entry.usable) {
    diag.error(
        fmt::format("This Quindle is not usable, so it is not run anyhow: {} Mend it first.", entry.error),
        entry.path);
    return false;
  }
  QuindleSource source;
  if (!readQuindleSource(entry.path, source, diag)) return false;
  text = source.text;
  if (setQuindleEnabled(text, enabled) && says(text, entry.document.name, enabled)) return true;
  diag.error(
      fmt::format("The line \"enabled {}\" finds no place in this layout. Lay it out with \"quindle fmt "
                  "--write\", or add the line yourself.",
                  enabled),
      entry.path);
  return false;
}

/// Writes the user's file where it is, or a copy of an installed one. `path` receives where it went.
bool store(const QuindleLibraryEntry& entry, const std::string& text, std::string& path, Diag& diag) {
  if (isOwn(entry)) {
    path = entry.path;
    std::string problem;
    if (writeWholeFile(path, std::as_bytes(std::span(text)), problem)) return true;
    diag.error(problem, path);
    return false;
  }
  QuindleDocument document;
  if (!hasOwnPlace(entry.document.name, diag) || !saveQuindle(userQuindleDirectory(), text, document, diag))
    return false;
  path = document.sourceFile;
  return true;
}

/// What came of it.
struct Switched {
  std::string name;
  std::string path;       ///< The user's file; empty if nothing was written.
  std::string copiedFrom; ///< The installed file that it is a copy of.
  bool wasSo = false;     ///< There was nothing to do.
  bool good = false;
};

Switched switchInFile(const std::string& name, bool enabled, Diag& diag) {
  const QuindleLibrary library = scanCollection();
  Switched result;
  const QuindleLibraryEntry* const entry = findInCollection(library, name, diag);
  if (entry == nullptr) return result;
  result.name = displayName(*entry);
  result.wasSo = entry->usable && entry->document.enabled == enabled;
  std::string text;
  result.good =
      result.wasSo || (editedText(*entry, enabled, text, diag) && store(*entry, text, result.path, diag));
  if (!result.path.empty() && !isOwn(*entry)) result.copiedFrom = entry->path;
  return result;
}

void print(const Switched& result, bool enabled, Console& console) {
  if (!result.good) return;
  if (!result.copiedFrom.empty())
    console.printLine(fmt::format("{} is copied to {}", result.copiedFrom, result.path));
  const char* const state = enabled ? "on" : "off";
  console.printLine(result.wasSo ? fmt::format("\"{}\" is {} already", result.name, state)
                                 : fmt::format("\"{}\" is switched {}", result.name, state));
}

} // namespace

void addSwitchOptions(CLI::App& verb, SwitchOptions& options) {
  verb.add_option("NAME", options.name, "Its name; the case of letters does not matter.")->required();
  verb.add_flag(
      "--json", options.json,
      "Print JSON: \"name\", \"path\" (the file that was written, empty if none was), \"copiedFrom\" (the "
      "installed file), \"ok\" and \"diagnostics\".");
}

Exit switchQuindle(const SwitchOptions& options, bool enabled, Console& console) {
  Diag diag;
  const Switched result = switchInFile(options.name, enabled, diag);
  if (options.json) {
    console.printJson({{"name", result.name},
                       {"path", result.path},
                       {"copiedFrom", result.copiedFrom},
                       {"ok", result.good},
                       {"diagnostics", diagnosticsJson(diag)}});
  } else {
    console.report(diag);
    print(result, enabled, console);
  }
  return result.good ? Exit::Done : Exit::Failed;
}

} // namespace Zamt::Host
