#include "host/cli/commands/commands.h"
#include "host/cli/switchQuindle.h"

#include <CLI/App.hpp>

#include <memory>

namespace Zamt::Host {

void addDisableCommand(CLI::App& app, Session& session) {
  auto options = std::make_shared<SwitchOptions>();
  CLI::App* verb = addVerb(app, "disable",
                           "Switch a Quindle off. It stays in the collection, but is not "
                           "run and takes no keys.");
  addSwitchOptions(*verb, *options);
  verb->footer(
      "An installed one is copied to your directory, and the copy, which hides it, is switched off.\n"
      "Example:\n  quindle disable \"Restore class\"");
  verb->callback([options, &session] { session.exit = switchQuindle(*options, false, session.console); });
}

} // namespace Zamt::Host
