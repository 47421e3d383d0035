#pragma once

#include "tests/support/runCommand.h"

#include <string>
#include <utility>
#include <vector>

namespace Zamt::Testing {

/// Runs the built command with these arguments.
inline CommandResult quindle(std::vector<std::string> words) {
  words.insert(words.begin(), QUINDLE_COMMAND);
  return runCommand(words);
}

} // namespace Zamt::Testing
