#pragma once

#include "files/Stop.h"

namespace Zamt::Host {

/// From now on Ctrl-C, and being asked to end, only raise `interrupted`, so that the work at hand ends by
/// itself and tidies up. Asked a second time, the process ends at once. Writing to a reader that went away
/// becomes an error of the write. A cloud that another program cuts short while it is read ends the process
/// with a sentence, and leaves no temporary.
void handleSignals();

/// What those two raise, for the work that is told to look at it.
const Stop& askedToStop();

} // namespace Zamt::Host
