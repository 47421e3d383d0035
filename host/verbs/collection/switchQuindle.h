#pragma once

#include "host/verbs/Verb.h"

#include <vector>

namespace Zamt::Host {

/// What the verbs that switch take.
std::vector<Option> switchOptions();

/// Switches the Quindle of that name on or off in its file. An installed one is copied to the user's
/// directory and the copy is switched.
Answer switchQuindle(const Request& request, bool enabled, const Context& context);

} // namespace Zamt::Host
