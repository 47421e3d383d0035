#pragma once

#include "quindle/core/QuindleDocument.h"

#include <string>
#include <unordered_map>
#include <vector>

namespace Zamt {

/// What there is to tell about a Quindle that another one runs.
struct RunTarget {
  bool found = false;
  bool changesData = false; ///< It classifies, or something that it runs does.
  std::string description;  ///< Of one that was found.
  std::string why; ///< Of one that was not: why it can't be run; empty if there is none of that name.
};

/// All that the steps of one list, not those of blocks inside them, run: by name. Each name is resolved once,
/// and the cost is linear in the documents found, however often they run one another.
std::unordered_map<std::string, RunTarget> runTargets(const std::vector<QuindleStep>& steps,
                                                      const QuindleResolver& resolver);

} // namespace Zamt
