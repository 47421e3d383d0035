#include "host/cli/HelpFormatter.h"
#include "host/cli/Interrupt.h"
#include "host/cli/commands/commands.h"
#include "host/session/nearest.h"

#include <CLI/CLI.hpp>
#include <fmt/format.h>

#include <memory>
#include <sstream>
#include <string>
#include <vector>

using namespace Zamt::Host;

namespace {

/// What is wrong with the command line, in a sentence.
std::string complaint(const CLI::App& app, const CLI::ParseError& problem) {
  if (!app.get_subcommands().empty()) return problem.what();
  const std::vector<std::string> words = app.remaining();
  if (words.empty()) return "No command is named.";
  std::vector<std::string> names;
  for (const CLI::App* const command : commandsOf(app)) names.push_back(command->get_name());
  return fmt::format("There is no command called \"{}\".{}", words.front(), didYouMean(words.front(), names));
}

/// Where to read about it.
std::string advice(const CLI::App& app) {
  const std::vector<CLI::App*> chosen = app.get_subcommands();
  if (chosen.empty()) return "\"quindle help\" lists the commands.";
  return fmt::format("\"quindle help {}\" shows what can be written.", chosen.front()->get_name());
}

/// Help and version are results; anything else means that the command was called wrongly.
Exit endParsing(const CLI::App& app, const CLI::ParseError& problem, Console& console) {
  if (problem.get_exit_code() == 0) {
    std::ostringstream text;
    app.exit(problem, text, text);
    console.print(text.str());
    return Exit::Done;
  }
  console.error(complaint(app, problem));
  console.note(advice(app));
  return Exit::Usage;
}

/// The commands as the overview lists them.
void addCommands(CLI::App& app, Session& session) {
  struct Group {
    const char* title;
    std::vector<void (*)(CLI::App&, Session&)> commands;
  };
  const std::vector<Group> groups{
      {"Clouds", {addSampleCommand, addInfoCommand}},
      {"Run a Quindle on clouds", {addPreviewCommand, addRunCommand}},
      {"Write a Quindle", {addCheckCommand, addFmtCommand, addExplainCommand, addPlanCommand}},
      {"Keep Quindles in the collection",
       {addListCommand, addSearchCommand, addShowCommand, addSaveCommand, addDeleteCommand, addEnableCommand,
        addDisableCommand, addKeysCommand}},
      {"Look something up", {addReferenceCommand, addConditionsCommand, addRegistryCommand, addHelpCommand}}};
  for (const Group& group : groups) {
    app.group(group.title); // a command takes over the group of what it is added to
    for (const auto add : group.commands) add(app, session);
  }
}

} // namespace

int main(int argc, char** argv) {
  handleSignals();
  Session session;
  CLI::App app(
      "Runs Quindles on LAS files. A Quindle is a small program in a text file: it selects points of a "
      "cloud by conditions and puts them into classes.",
      "quindle");
  app.formatter(std::make_shared<HelpFormatter>());
  app.set_help_flag("-h,--help", "Print this help and end.");
  app.set_version_flag("--version", "quindle " QUINDLE_VERSION, "Print the version and end.");
  app.require_subcommand(1);
  app.footer("\"quindle help COMMAND\" shows one command, \"quindle help\" lists topics as well.\n"
             "Example:\n  quindle sample lake.las && quindle info lake.las");
  addCommands(app, session);
  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& problem) {
    session.exit = endParsing(app, problem, session.console);
  }
  return session.console.finish(session.exit);
}
