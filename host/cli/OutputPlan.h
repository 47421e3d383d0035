#pragma once

#include <string>
#include <vector>

namespace Zamt::Host {

/// Where each cloud of a run goes.
struct OutputRequest {
  std::vector<std::string> inputs;
  std::string output;   ///< What -o says: a file, or an existing directory; empty for none.
  bool inPlace = false; ///< Each input is replaced.
  bool force = false;   ///< Other files may be replaced as well.
};

/// Works out one output path for each input, in their order, before anything is run. False, with a sentence
/// in `problem`, when a file would be written twice, an input or another file would be replaced that was not
/// given up, or the place does not exist. Writes nothing.
bool planOutputs(const OutputRequest& request, std::vector<std::string>& outputs, std::string& problem);

} // namespace Zamt::Host
