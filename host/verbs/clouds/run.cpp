#include "host/verbs/clouds/runJob.h"
#include "host/verbs/verbs.h"

namespace Zamt::Host {

namespace {

Answer run(const Request& request, const Context& context) {
  Job job;
  std::string problem;
  const Status planned = readOutputs(request, job, problem);
  return planned == Status::Done ? runJob(request, std::move(job), context) : refused(planned, problem);
}

std::vector<Option> runOptions() {
  std::vector<Option> options = jobOptions();
  for (Option& option : outputOptions(true)) options.push_back(std::move(option));
  return options;
}

} // namespace

Verb runVerb() {
  return {.name = "run",
          .summary = "Run a Quindle on clouds and write them.",
          .footer = "One of -o and --in-place is needed. A file is replaced whole or not at all.\n"
                    "Example:\n  quindle run examples/isolated-noise.quindle lake.las -o out.las",
          .options = runOptions(),
          .listName = "clouds",
          .run = run};
}

} // namespace Zamt::Host
