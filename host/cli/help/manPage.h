#pragma once

#include "host/cli/Program.h"

#include <string>

namespace Zamt::Host {

/// The manual page of the command in roff, with the man macros: the help of the program and of all its verbs,
/// and every help topic. The same for the same sources, wherever and whenever it is made.
std::string manPage(const Program& program);

} // namespace Zamt::Host
