#pragma once

#include <string>
#include <vector>

namespace Zamt {

class CommandLineParser {
public:
  static std::vector<std::string> getDataDirs() { return {}; }
};

} // namespace Zamt
