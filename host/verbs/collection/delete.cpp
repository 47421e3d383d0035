#include "host/session/Collection.h"
#include "host/verbs/options.h"
#include "host/verbs/verbs.h"
#include "quindle/library/QuindleFiles.h"
#include "quindle/library/entryNames.h"

#include <fmt/format.h>

#include <string>

namespace Zamt::Host {

namespace {

/// What came of it.
struct Deleted {
  std::string file;         ///< Empty if nothing was deleted.
  std::string revealedName; ///< What goes by the name now; empty if nothing does.
  std::string revealedFile;
  bool revealedIsOwn = false;
};

/// Looks up what goes by that name now.
void lookAfter(const std::string& name, Deleted& deleted) {
  const QuindleLibrary library = scanCollection();
  const QuindleLibraryEntry* const entry = findQuindleLoosely(library, name);
  if (entry == nullptr) return;
  deleted.revealedName = displayName(*entry);
  deleted.revealedFile = entry->path;
  deleted.revealedIsOwn = isOwn(*entry);
}

std::string deletedText(const Deleted& deleted) {
  if (deleted.file.empty()) return {};
  std::string text = fmt::format("deleted {}\n", deleted.file);
  if (!deleted.revealedFile.empty())
    text += fmt::format("\"{}\" is now the {}, {}\n", deleted.revealedName,
                        deleted.revealedIsOwn ? "other one of yours" : "installed one again",
                        deleted.revealedFile);
  return text;
}

Data deletedData(const Deleted& deleted) {
  return Fields{{"deleted", deleted.file}, {"revealed", deleted.revealedFile}};
}

Answer remove(const Request& request, const Context& /*context*/) {
  const std::string& name = request.text("name");
  Diag diag;
  Deleted deleted;
  std::string file;
  bool revealed = false;
  if (findInCollection(scanCollection(), name, diag) != nullptr &&
      deleteQuindle(userQuindleDirectory(), quindleSearchPath(), name, file, revealed, diag)) {
    deleted.file = file;
    if (revealed) lookAfter(name, deleted);
  }
  Answer answer;
  answer.status = deleted.file.empty() ? Status::Failed : Status::Done;
  answer.parts.push_back(partOf(std::move(diag), std::move(deleted), deletedText, deletedData));
  return answer;
}

} // namespace

Verb deleteVerb() {
  return {
      .name = "delete",
      .summary = "Delete a Quindle of your own. An installed one of the same name comes back.",
      .footer = "Example:\n  quindle delete \"Isolated noise\"",
      .options = {nameArgument(),
                  jsonOption("Print JSON: \"deleted\" (its file), \"revealed\" (the file that goes by the "
                             "name now) and \"diagnostics\".")},
      .run = remove};
}

} // namespace Zamt::Host
