#include "host/cli/switchQuindle.h"

#include "host/cli/Collection.h"
#include "host/cli/QuindleSource.h"
#include "host/points/writeWholeFile.h"
#include "quindle/library/QuindleFiles.h"
#include "quindle/library/entryNames.h"
#include "quindle/text/parseQuindle.h"

#include <fmt/format.h>

#include <span>

namespace Zamt::Host {

namespace {

const char* wordFor(bool enabled) { return enabled ? "on" : "off"; }

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

} // namespace

Exit switchQuindle(const std::string& name, bool enabled, Console& console) {
  const QuindleLibrary library = scanCollection();
  Diag diag;
  std::string text;
  std::string path;
  const QuindleLibraryEntry* const entry = findInCollection(library, name, diag);
  if (entry != nullptr && entry->usable && entry->document.enabled == enabled) {
    console.printLine(fmt::format("\"{}\" is {} already", displayName(*entry), wordFor(enabled)));
    return Exit::Done;
  }
  const bool good =
      entry != nullptr && editedText(*entry, enabled, text, diag) && store(*entry, text, path, diag);
  console.report(diag);
  if (!good) return Exit::Failed;
  if (!isOwn(*entry)) console.printLine(fmt::format("{} is copied to {}", entry->path, path));
  console.printLine(fmt::format("\"{}\" is switched {}", displayName(*entry), wordFor(enabled)));
  return Exit::Done;
}

} // namespace Zamt::Host
