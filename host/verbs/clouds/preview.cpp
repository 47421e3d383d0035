#include "host/verbs/clouds/runJob.h"
#include "host/verbs/verbs.h"

namespace Zamt::Host {

namespace {

Answer preview(const Request& request, const Context& context) {
  Job job;
  for (const std::string& file : request.texts("cloud")) job.clouds.push_back({file, {}});
  job.picture = request.text("picture");
  if (!job.picture.empty() && job.clouds.size() != 1)
    return refused(Status::Usage, "A picture shows one cloud. Preview them one at a time.");
  return runJob(request, std::move(job), context);
}

std::vector<Option> previewOptions() {
  std::vector<Option> options = jobOptions();
  options.push_back(
      {.name = "picture",
       .help = "Draw the cloud into this PNG file, with what would change in front. For one cloud only.",
       .placeholder = "FILE.png",
       .names = Option::Names::Picture});
  return options;
}

} // namespace

Verb previewVerb() {
  return {.name = "preview",
          .summary = "Say what a Quindle would change, and write nothing.",
          .footer = "It is a run in memory: every step sees what the ones before it did, and files that "
                    "actions would write are named.\nExample:\n  quindle preview "
                    "examples/isolated-noise.quindle lake.las --set radius=3",
          .options = previewOptions(),
          .listName = "clouds",
          .run = preview};
}

} // namespace Zamt::Host
