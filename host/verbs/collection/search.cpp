#include "host/session/Collection.h"
#include "host/verbs/collection/entryTable.h"
#include "host/verbs/options.h"
#include "host/verbs/verbs.h"

#include <fmt/format.h>

#include <string>
#include <vector>

namespace Zamt::Host {

namespace {

Answer search(const Request& request, const Context& /*context*/) {
  const std::string& text = request.text("text");
  const auto library = std::make_shared<const QuindleLibrary>(scanCollection());
  std::vector<const QuindleLibraryEntry*> entries = library->search(text);
  Diag diag;
  if (entries.empty())
    diag.note(fmt::format("No Quindle holds \"{}\" in its name, description, category or tags.", text));
  Answer answer;
  answer.status = entries.empty() ? Status::Failed : Status::Done;
  answer.parts.push_back(entriesPart(std::move(diag), {library, std::move(entries)}));
  return answer;
}

} // namespace

Verb searchVerb() {
  return {.name = "search",
          .summary = "List the Quindles that hold a text. It is looked for in their names, descriptions, "
                     "categories and tags.",
          .footer = "The exit code is 1 when nothing was found.\nExample:\n  quindle search water",
          .options = {{.name = "text",
                       .help = "What to look for; the case of letters does not matter.",
                       .placeholder = "TEXT",
                       .argument = true,
                       .required = true},
                      jsonOption(entriesJsonHelp)},
          .run = search};
}

} // namespace Zamt::Host
