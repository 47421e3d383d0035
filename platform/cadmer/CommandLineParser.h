#pragma once

#include "rethold/Export.h"

#include <string>
#include <vector>

namespace Zamt {

/// What the application was started with.
class QUINDLE_PLATFORM_API CommandLineParser {
public:
  /// The data directories, the most important first: those of the environment variable QUINDLE_DATA_DIRS,
  /// separated by ":", as they stand there; set to nothing, it means none. Without it, the share directory of
  /// the installation that this library belongs to. Read afresh with each call.
  static std::vector<std::string> getDataDirs();
};

} // namespace Zamt
