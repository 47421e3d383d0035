#pragma once

#include <string>
#include <vector>

namespace Zamt::Host {

/// The files that actions of objects write, for a host that names them, or that holds them back.
struct ActionFiles {
  bool dry = false;               ///< An action that writes does all but that, and answers as if it had.
  std::vector<std::string> paths; ///< What was written, or held back, in the order of the actions.
};

} // namespace Zamt::Host
