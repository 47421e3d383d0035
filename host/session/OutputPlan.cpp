#include "host/session/OutputPlan.h"

#include <fmt/format.h>

#include <filesystem>
#include <set>
#include <system_error>

namespace Zamt::Host {

namespace {

namespace fs = std::filesystem;

/// One spelling for all spellings of a path, links resolved as far as it exists.
std::string sameSpelling(const std::string& path) {
  std::error_code error;
  const fs::path absolute = fs::absolute(path, error);
  const fs::path canonical = fs::weakly_canonical(absolute, error);
  return error ? absolute.lexically_normal().string() : canonical.string();
}

OutputPlan planPaths(const OutputRequest& request, std::vector<std::string>& outputs, std::string& problem) {
  if (request.inPlace) {
    outputs = request.inputs;
    return OutputPlan::Good;
  }
  std::error_code error;
  const fs::path place(request.output);
  if (fs::is_directory(place, error)) {
    for (const std::string& input : request.inputs)
      outputs.push_back((place / fs::path(input).filename()).string());
    return OutputPlan::Good;
  }
  if (request.inputs.size() > 1 || place.filename().empty()) {
    problem = fmt::format("\"{}\" is no directory. Make it first; several clouds need one to be written to.",
                          request.output);
    return OutputPlan::NoPlace;
  }
  const fs::path parent = place.has_parent_path() ? place.parent_path() : fs::path(".");
  if (!fs::is_directory(parent, error)) {
    problem = fmt::format("The directory \"{}\" does not exist. Make it first.", parent.string());
    return OutputPlan::NoPlace;
  }
  outputs.push_back(request.output);
  return OutputPlan::Good;
}

OutputPlan refuseDoubles(const std::vector<std::string>& outputs, std::string& problem) {
  std::set<std::string> seen;
  for (const std::string& output : outputs) {
    if (seen.insert(sameSpelling(output)).second) continue;
    problem = fmt::format("Two of the clouds would be written to \"{}\". Run them one at a time.", output);
    return OutputPlan::Senseless;
  }
  return OutputPlan::Good;
}

} // namespace

OutputPlan planOutputs(const OutputRequest& request, std::vector<std::string>& outputs,
                       std::string& problem) {
  outputs.clear();
  problem.clear();
  if (!request.inPlace && request.output.empty()) {
    problem = "Nothing says where the result goes. Write -o with a file or a directory, or --in-place.";
    return OutputPlan::Senseless;
  }
  const OutputPlan planned = planPaths(request, outputs, problem);
  return planned == OutputPlan::Good ? refuseDoubles(outputs, problem) : planned;
}

} // namespace Zamt::Host
