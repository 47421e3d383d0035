#include "host/verbs/collection/switchQuindle.h"

#include "files/writeWholeFile.h"
#include "host/session/Collection.h"
#include "host/verbs/options.h"
#include "quindle/library/QuindleFiles.h"
#include "quindle/library/entryNames.h"
#include "quindle/text/parseQuindle.h"

#include <fmt/format.h>

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
bool editedText(const QuindleLibraryEntry& entry, bool enabled, const QuindleReader& reader,
                std::string& text, Diag& diag) {
  if (!entry.usable) {
    diag.error(
        fmt::format("This Quindle is not usable, so it is not run anyhow: {} Mend it first.", entry.error),
        entry.path);
    return false;
  }
  QuindleSource source;
  if (!reader.read(entry.path, source, diag)) return false;
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
  bool enabled = false; ///< What was wanted.
  std::string name;
  std::string path;       ///< The user's file; empty if nothing was written.
  std::string copiedFrom; ///< The installed file that it is a copy of.
  bool wasSo = false;     ///< There was nothing to do.
  bool good = false;
};

Switched switchInFile(const std::string& name, bool enabled, const QuindleReader& reader, Diag& diag) {
  const QuindleLibrary library = scanCollection();
  Switched result{enabled, {}, {}, {}, false, false};
  const QuindleLibraryEntry* const entry = findInCollection(library, name, diag);
  if (entry == nullptr) return result;
  result.name = displayName(*entry);
  result.wasSo = entry->usable && entry->document.enabled == enabled;
  std::string text;
  result.good = result.wasSo ||
                (editedText(*entry, enabled, reader, text, diag) && store(*entry, text, result.path, diag));
  if (!result.path.empty() && !isOwn(*entry)) result.copiedFrom = entry->path;
  return result;
}

std::string switchedText(const Switched& result) {
  if (!result.good) return {};
  std::string text;
  if (!result.copiedFrom.empty()) text = fmt::format("{} is copied to {}\n", result.copiedFrom, result.path);
  const char* const state = result.enabled ? "on" : "off";
  return text + (result.wasSo ? fmt::format("\"{}\" is {} already\n", result.name, state)
                              : fmt::format("\"{}\" is switched {}\n", result.name, state));
}

Data switchedData(const Switched& result) {
  return Fields{
      {"name", result.name}, {"path", result.path}, {"copiedFrom", result.copiedFrom}, {"ok", result.good}};
}

} // namespace

std::vector<Option> switchOptions() {
  return {nameArgument(),
          jsonOption("Print JSON: \"name\", \"path\" (the file that was written, empty if none "
                     "was), \"copiedFrom\" (the installed file), \"ok\" and \"diagnostics\".")};
}

Answer switchQuindle(const Request& request, bool enabled, const Context& context) {
  Diag diag;
  Switched result = switchInFile(request.text("name"), enabled, context.quindles, diag);
  Answer answer;
  answer.status = result.good ? Status::Done : Status::Failed;
  answer.parts.push_back(partOf(std::move(diag), std::move(result), switchedText, switchedData));
  return answer;
}

} // namespace Zamt::Host
