#pragma once

#include "host/cli/Console.h"

#include <string>

namespace Zamt::Host {

/// Switches the Quindle of that name on or off in its file, and says so. An installed one is copied to the
/// user's directory and the copy is switched.
Exit switchQuindle(const std::string& name, bool enabled, Console& console);

} // namespace Zamt::Host
