#include "host/verbs/clouds/oneLine.h"
#include "host/verbs/clouds/runJob.h"
#include "host/verbs/options.h"
#include "host/verbs/verbs.h"

namespace Zamt::Host {

namespace {

Answer extract(const Request& request, const Context& context) {
  Job job;
  Answer answer;
  if (!readOneLine(request, {}, context, job, answer)) return answer;
  std::string problem;
  const Status planned = readOutputs(request, job, problem);
  return planned == Status::Done ? selectPoints(job, context, std::move(answer)) : refused(planned, problem);
}

std::vector<Option> extractOptions() {
  std::vector<Option> options = outputOptions(false);
  options.push_back(jsonOption(selectedJsonHelp));
  return oneLineOptions({}, std::move(options));
}

} // namespace

Verb extractVerb() {
  return {.name = "extract",
          .summary = "Write the points that a condition holds for into clouds of their own. All that a point "
                     "has and all else in the file is kept.",
          .footer = "A file is replaced whole or not at all.\n"
                    "Example:\n  quindle extract 'class(\"Building\")' lake.las -o roofs.las",
          .options = extractOptions(),
          .run = extract};
}

} // namespace Zamt::Host
