#include "host/cli/commands/commands.h"
namespace Zamt::Host { void addRunCommand(CLI::App&, Session&) {} void addPreviewCommand(CLI::App&, Session&) {} }
