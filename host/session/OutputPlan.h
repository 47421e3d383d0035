#pragma once

#include <string>
#include <vector>

namespace Zamt::Host {

/// Where each cloud of a run goes.
struct OutputRequest {
  std::vector<std::string> inputs;
  std::string output;   ///< A file, or an existing directory; empty for none.
  bool inPlace = false; ///< Each input is replaced.
};

/// What came of working out where clouds go.
enum class OutputPlan {
  Good,
  Senseless, ///< Nothing says where to write, or a file would be written twice.
  NoPlace    ///< The place does not exist.
};

/// Works out one output path for each input, in their order, before anything is run. An output may be a file
/// that is there, one of the inputs included: it is replaced as a whole. Unless the plan is good, `problem`
/// holds a sentence.
OutputPlan planOutputs(const OutputRequest& request, std::vector<std::string>& outputs, std::string& problem);

} // namespace Zamt::Host
