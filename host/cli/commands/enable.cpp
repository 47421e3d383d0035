#include "host/cli/commands/commands.h"
#include "host/cli/switchQuindle.h"

#include <CLI/App.hpp>

#include <memory>

namespace Zamt::Host {

void addEnableCommand(CLI::App& app, Session& session) {
  auto options = std::make_shared<SwitchOptions>();
  CLI::App* verb = addVerb(app, "enable", "Switch a Quindle on again.");
  addSwitchOptions(*verb, *options);
  verb->footer("Example:\n  quindle enable \"Restore class\"");
  verb->callback([options, &session] { session.exit = switchQuindle(*options, true, session.console); });
}

} // namespace Zamt::Host
