#pragma once

#include "host/cli/Console.h"

#include <CLI/App.hpp>

#include <string>

namespace Zamt::Host {

/// What is to be switched, and how to tell of it.
struct SwitchOptions {
  std::string name;
  bool json = false;
};

/// Adds the argument and the option that both verbs take; `options` must outlive the verb.
void addSwitchOptions(CLI::App& verb, SwitchOptions& options);

/// Switches the Quindle of that name on or off in its file, and says so. An installed one is copied to the
/// user's directory and the copy is switched.
Exit switchQuindle(const SwitchOptions& options, bool enabled, Console& console);

} // namespace Zamt::Host
