#pragma once

#include "host/cli/Console.h"

#include <string>
#include <vector>

namespace Zamt::Host {

/// Where each cloud of a run goes.
struct OutputRequest {
  std::vector<std::string> inputs;
  std::string output;   ///< What -o says: a file, or an existing directory; empty for none.
  bool inPlace = false; ///< Each input is replaced.
};

/// Works out one output path for each input, in their order, before anything is run. An output may be a file
/// that is there, one of the inputs included: it is replaced as a whole. With a sentence in `problem`: Usage
/// when nothing says where to write or a file would be written twice, Failed when the place does not exist.
Exit planOutputs(const OutputRequest& request, std::vector<std::string>& outputs, std::string& problem);

} // namespace Zamt::Host
