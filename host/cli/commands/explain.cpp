#include "host/cli/commands/commands.h"
#include "host/session/Collection.h"
#include "host/session/QuindleSource.h"
#include "quindle/reference/explainQuindle.h"

#include <CLI/App.hpp>
#include <nlohmann/json.hpp>

#include <memory>
#include <string>

namespace Zamt::Host {

namespace {

struct ExplainOptions {
  std::string quindle;
  bool json = false;
};

Exit explain(const ExplainOptions& options, Console& console) {
  Diag diag;
  QuindleDocument document;
  const bool good = loadQuindle(options.quindle, document, diag);
  const std::string text =
      good ? explainQuindle(document, collectionResolver(document.sourceFile)) : std::string();
  if (options.json) {
    console.printJson({{"name", document.name}, {"text", text}, {"diagnostics", diagnosticsJson(diag)}});
  } else {
    console.report(diag);
    console.print(text);
  }
  return good ? Exit::Done : Exit::Failed;
}

} // namespace

void addExplainCommand(CLI::App& app, Session& session) {
  auto options = std::make_shared<ExplainOptions>();
  CLI::App* verb = addVerb(app, "explain", "Tell what a Quindle needs and does, in plain words.");
  verb->add_option("QUINDLE", options->quindle, quindleHelp)->required();
  verb->add_flag("--json", options->json, "Print JSON: \"name\", \"text\" and \"diagnostics\".");
  verb->footer("Example:\n  quindle explain examples/underwater-ground.quindle");
  verb->callback([options, &session] { session.exit = explain(*options, session.console); });
}

} // namespace Zamt::Host
