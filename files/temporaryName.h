#pragma once

#include <string>

namespace Zamt {

/// The name of a file that stands for another one for a while. It follows from `key`, so that what a killed
/// process left is found again without a look through the directory, and is short whatever the key. `attempt`
/// tells apart those of one key.
std::string temporaryName(const std::string& key, unsigned attempt, const char* ending);

} // namespace Zamt
