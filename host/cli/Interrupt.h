#pragma once

#include "files/Stop.h"

namespace Zamt::Host {

/// From now on Ctrl-C, and being asked to end, only raise `stop`, which must outlive all signals, so that the
/// work at hand ends by itself and tidies up. Asked a second time, the process ends at once. Writing to a
/// reader that went away, or more than a file may hold, becomes an error of the write. A cloud that another
/// program cuts short while it is read ends the process with a sentence, and leaves no temporary.
void handleSignals(Stop& stop);

/// Ends the process by the signal that raised `stop`, if one did; to be called when all is said and tidied
/// up.
void endIfInterrupted();

} // namespace Zamt::Host
