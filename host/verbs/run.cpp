#include "host/session/OutputPlan.h"
#include "host/verbs/runJob.h"
#include "host/verbs/verbs.h"

namespace Zamt::Host {

namespace {

Answer run(const Request& request, const Context& context) {
  const std::vector<std::string>& files = request.texts("cloud");
  std::vector<std::string> outputs;
  std::string problem;
  const OutputPlan planned =
      planOutputs({files, request.text("output"), request.flag("in-place")}, outputs, problem);
  if (planned != OutputPlan::Good)
    return refused(planned == OutputPlan::Senseless ? Status::Usage : Status::Failed, problem);
  Job job;
  for (std::size_t i = 0; i < files.size(); ++i) job.clouds.push_back({files[i], outputs[i]});
  return runJob(request, std::move(job), context);
}

std::vector<Option> runOptions() {
  std::vector<Option> options = jobOptions();
  options.push_back(
      {.name = "output",
       .help = "Where to write: a file, or a directory that is there, which several clouds need.",
       .placeholder = "OUT",
       .letter = 'o'});
  options.push_back({.name = "in-place",
                     .kind = Option::Kind::Flag,
                     .help = "Write each cloud over itself.",
                     .excludes = {"output"}});
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
