#include "host/cli/commands/commands.h"
#include "host/cli/switchQuindle.h"

#include <CLI/App.hpp>
#include <CLI/Config.hpp>
#include <CLI/Formatter.hpp>

#include <memory>
#include <string>

namespace Zamt::Host {

void addEnableCommand(CLI::App& app, Session& session) {
  auto name = std::make_shared<std::string>();
  CLI::App* verb = app.add_subcommand("enable", "Switch a Quindle on again.");
  verb->add_option("NAME", *name, "Its name; the case of letters does not matter.")->required();
  verb->footer("Example:\n  quindle enable \"Restore class\"");
  verb->callback([name, &session] { session.exit = switchQuindle(*name, true, session.console); });
}

} // namespace Zamt::Host
