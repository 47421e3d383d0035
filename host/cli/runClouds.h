#pragma once

#include "host/cli/Console.h"
#include "host/cli/commands/runOptions.h"

#include <string>
#include <vector>

namespace Zamt::Host {

/// Runs a Quindle on each cloud of the command line in turn, or previews it, and prints what came of it.
/// `outputs` holds where each cloud is written, in the same order; empty for a preview. `picture` is a PNG
/// file to draw the preview into; empty for none. A cloud that fails is not written, and the next ones still
/// run.
Exit runClouds(const RunOptions& options, const std::vector<std::string>& outputs, const std::string& picture,
               Console& console);

} // namespace Zamt::Host
