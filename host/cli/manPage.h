#pragma once

#include <CLI/App.hpp>

#include <string>

namespace Zamt::Host {

/// The manual page of the command in roff, with the man macros: the help of `app` and of all its commands,
/// and every help topic. The same for the same sources, wherever and whenever it is made.
std::string manPage(const CLI::App& app);

} // namespace Zamt::Host
