#include "host/cli/commands/commands.h"

#include <CLI/Config.hpp>
#include <CLI/Formatter.hpp>

namespace Zamt::Host {

CLI::App* addVerb(CLI::App& app, const std::string& name, const std::string& description) {
  return app.add_subcommand(name, description);
}

} // namespace Zamt::Host
