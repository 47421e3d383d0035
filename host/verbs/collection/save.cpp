#include "host/session/Collection.h"
#include "host/verbs/options.h"
#include "host/verbs/verbs.h"
#include "quindle/check/checkQuindle.h"
#include "quindle/library/QuindleFiles.h"
#include "quindle/text/parseQuindle.h"

#include <fmt/format.h>

#include <string>

namespace Zamt::Host {

namespace {

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

Kept keep(const std::string& file, const QuindleReader& reader, Diag& diag) {
  QuindleSource source;
  QuindleDocument document;
  Kept kept;
  // Read here first, so that diagnostics name the file that the user wrote.
  if (!reader.read(file, source, diag) || !parseQuindle(source.text, source.label, document, diag) ||
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

std::string keptText(const Kept& kept) {
  if (!kept.good) return {};
  std::string text = fmt::format("\"{}\" is saved as {}{}\n", kept.document.name, kept.document.sourceFile,
                                 kept.replaced ? ", in place of the one before" : "");
  if (!kept.hides.empty())
    text += fmt::format("It now stands in front of the installed one, {}\n", kept.hides);
  return text;
}

Data keptData(const Kept& kept) {
  return Fields{{"name", kept.document.name},
                {"path", kept.good ? kept.document.sourceFile : std::string()},
                {"hides", kept.hides}};
}

Answer save(const Request& request, const Context& context) {
  Diag diag;
  Kept kept = keep(request.text("file"), context.quindles, diag);
  Answer answer;
  answer.status = kept.good ? Status::Done : Status::Failed;
  answer.parts.push_back(partOf(std::move(diag), std::move(kept), keptText, keptData));
  return answer;
}

} // namespace

Verb saveVerb() {
  return {
      .name = "save",
      .summary = "Keep a Quindle in the collection. It goes by the name inside it, and replaces your own of "
                 "that name.",
      .footer = "A Quindle with errors is not saved.\nExample:\n  quindle save my.quindle",
      .options = {{.name = "file",
                   .help = "The file that holds it, or - for standard input.",
                   .placeholder = "FILE",
                   .argument = true,
                   .required = true,
                   .names = Option::Names::QuindleFile},
                  jsonOption("Print JSON: \"name\", \"path\", \"hides\" (the installed file of that name) "
                             "and \"diagnostics\".")},
      .run = save};
}

} // namespace Zamt::Host
