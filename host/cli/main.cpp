#include "host/cli/Interrupt.h"
#include "host/cli/commands/commands.h"

#include <CLI/CLI.hpp>

#include <sstream>

using namespace Zamt::Host;

namespace {

/// Help and version are results; anything else means that the command was called wrongly.
Exit endParsing(const CLI::App& app, const CLI::ParseError& problem, Console& console) {
  if (problem.get_exit_code() == 0) {
    std::ostringstream text;
    app.exit(problem, text, text);
    console.print(text.str());
    return Exit::Done;
  }
  console.error(problem.what());
  console.note("See \"quindle --help\", or --help behind a command, for what can be written.");
  return Exit::Usage;
}

} // namespace

int main(int argc, char** argv) {
  handleSignals();
  Session session;
  CLI::App app("Runs Quindles, small programs that edit point clouds, on LAS files.", "quindle");
  app.set_version_flag("--version", "quindle " QUINDLE_VERSION, "Print the version and end.");
  app.get_formatter()->column_width(34);
  app.require_subcommand(1);
  app.footer("Example:\n  quindle sample scene.las && quindle info scene.las");
  addRunCommand(app, session);
  addPreviewCommand(app, session);
  addCheckCommand(app, session);
  addFmtCommand(app, session);
  addExplainCommand(app, session);
  addPlanCommand(app, session);
  addListCommand(app, session);
  addSearchCommand(app, session);
  addShowCommand(app, session);
  addSaveCommand(app, session);
  addDeleteCommand(app, session);
  addEnableCommand(app, session);
  addDisableCommand(app, session);
  addKeysCommand(app, session);
  addInfoCommand(app, session);
  addSampleCommand(app, session);
  addReferenceCommand(app, session);
  addConditionsCommand(app, session);
  addRegistryCommand(app, session);
  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& problem) {
    session.exit = endParsing(app, problem, session.console);
  }
  return session.console.finish(session.exit);
}
