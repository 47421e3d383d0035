#include "host/session/Collection.h"
#include "host/session/checkValues.h"
#include "host/verbs/language/explainValues.h"
#include "host/verbs/options.h"
#include "host/verbs/verbs.h"
#include "quindle/reference/explainQuindle.h"

#include <map>
#include <string>
#include <utility>

namespace Zamt::Host {

namespace {

struct Explained {
  std::string name;
  std::string text;
  ExplainedValues values;
  bool withValues = false;
};

/// False with an error in `diag`.
bool explainOne(const std::string& which, const std::map<std::string, std::string>& settings,
                const QuindleReader& reader, Explained& explained, Diag& diag) {
  QuindleDocument document;
  if (!reader.load(which, document, diag) || !checkValues(document, settings, diag)) return false;
  explained.name = document.name;
  explained.text = explainQuindle(document, collectionResolver(document.sourceFile));
  Diag faults; // the explanation tells of them
  explained.values = explainValues(document, settings, planQuindle(document, faults));
  return true;
}

std::string explainedWhole(const Explained& found) {
  return found.withValues ? found.text + explainedText(found.values) : found.text;
}

Data explainedWholeData(const Explained& found) {
  Fields fields{{"name", found.name}, {"text", found.text}};
  for (auto& field : explainedData(found.values)) fields.push_back(std::move(field));
  return fields;
}

Answer explain(const Request& request, const Context& context) {
  std::map<std::string, std::string> settings;
  std::string problem;
  if (!readSettings(request.texts("set"), settings, problem)) return refused(Status::Usage, problem);
  Diag diag;
  Explained explained;
  explained.withValues =
      explainOne(request.text("quindle"), settings, context.quindles, explained, diag) && !settings.empty();
  return answerOf(partOf(std::move(diag), std::move(explained), explainedWhole, explainedWholeData));
}

} // namespace

Verb explainVerb() {
  return {.name = "explain",
          .summary =
              "Tell what a Quindle needs and does, in plain words. With --set, its values and conditions "
              "are listed behind.",
          .footer = "Example:\n  quindle explain examples/underwater-ground.quindle",
          .options =
              {quindleArgument(), setOption(),
               jsonOption(
                   "Print JSON: \"name\", \"text\", \"values\" with name, value, set, supplied and help of "
                   "each parameter, \"conditions\" with line, text and arguments (name, parameter) "
                   "of each, and \"diagnostics\".")},
          .run = explain};
}

} // namespace Zamt::Host
