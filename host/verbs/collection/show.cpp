#include "host/session/Collection.h"
#include "host/verbs/options.h"
#include "host/verbs/verbs.h"

#include <string>

namespace Zamt::Host {

namespace {

struct Shown {
  bool onlyPath = false;
  std::string path; ///< Empty if there is no such Quindle.
  std::string text;
};

std::string shownText(const Shown& shown) {
  if (!shown.onlyPath) return shown.text;
  return shown.path.empty() ? std::string() : shown.path + '\n';
}

Answer show(const Request& request, const Context& context) {
  Diag diag;
  const QuindleLibrary library = scanCollection();
  const QuindleLibraryEntry* const entry = findInCollection(library, request.text("name"), diag);
  Shown shown{request.flag("path"), entry == nullptr ? std::string() : entry->path, {}};
  QuindleSource source;
  if (entry != nullptr && !shown.onlyPath) context.quindles.read(entry->path, source, diag);
  shown.text = std::move(source.text);
  if (entry != nullptr && !entry->usable && diag.errorCount == 0) diag.warning(entry->error, entry->path);
  return answerOf(partOf(std::move(diag), std::move(shown), shownText, [](const Shown& found) -> Data {
    return Fields{{"path", found.path}, {"text", found.text}};
  }));
}

} // namespace

Verb showVerb() {
  return {
      .name = "show",
      .summary = "Print the text of a Quindle of the collection.",
      .footer = "Example:\n  quindle show \"Isolated noise\" > my.quindle",
      .options = {nameArgument(),
                  {.name = "path", .kind = Option::Kind::Flag, .help = "Print the path of its file instead."},
                  jsonOption("Print JSON: \"path\", \"text\" and \"diagnostics\".")},
      .run = show};
}

} // namespace Zamt::Host
