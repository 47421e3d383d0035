#include "host/cli/commands/commands.h"
#include "host/cli/switchQuindle.h"

#include <CLI/App.hpp>
#include <CLI/Config.hpp>
#include <CLI/Formatter.hpp>

#include <memory>
#include <string>

namespace Zamt::Host {

void addDisableCommand(CLI::App& app, Session& session) {
  auto name = std::make_shared<std::string>();
  CLI::App* verb =
      app.add_subcommand("disable", "Switch a Quindle off. It stays in the collection, but is not "
                                    "run and takes no keys.");
  verb->add_option("NAME", *name, "Its name; the case of letters does not matter.")->required();
  verb->footer(
      "An installed one is copied to your directory, and the copy, which hides it, is switched off.\n"
      "Example:\n  quindle disable \"Restore class\"");
  verb->callback([name, &session] { session.exit = switchQuindle(*name, false, session.console); });
}

} // namespace Zamt::Host
