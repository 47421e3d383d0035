#include "host/session/Collection.h"
#include "host/verbs/options.h"
#include "host/verbs/verbs.h"
#include "quindle/reference/explainQuindle.h"

#include <string>

namespace Zamt::Host {

namespace {

struct Explained {
  std::string name;
  std::string text;
};

Answer explain(const Request& request, const Context& context) {
  Diag diag;
  QuindleDocument document;
  const bool good = context.quindles.load(request.text("quindle"), document, diag);
  Explained explained{document.name, {}};
  if (good) explained.text = explainQuindle(document, collectionResolver(document.sourceFile));
  return answerOf(partOf(
      std::move(diag), std::move(explained), [](const Explained& found) { return found.text; },
      [](const Explained& found) -> Data {
        return Fields{{"name", found.name}, {"text", found.text}};
      }));
}

} // namespace

Verb explainVerb() {
  return {.name = "explain",
          .summary = "Tell what a Quindle needs and does, in plain words.",
          .footer = "Example:\n  quindle explain examples/underwater-ground.quindle",
          .options = {quindleArgument(), jsonOption("Print JSON: \"name\", \"text\" and \"diagnostics\".")},
          .run = explain};
}

} // namespace Zamt::Host
