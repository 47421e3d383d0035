#pragma once

#include "host/session/Progress.h"

#include <chrono>
#include <string>

namespace Zamt::Host {

/// How far a long work is, in a line: a bar, which of how many things is at hand, and from the time that all
/// of it and that one took so far, the points a second and the time left. These are left out while there is
/// too little to tell them from.
std::string progressLine(const ProgressNow& now, std::chrono::duration<double> all,
                         std::chrono::duration<double> one);

} // namespace Zamt::Host
