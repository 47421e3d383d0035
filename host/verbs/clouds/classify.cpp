#include "host/session/cloudClasses.h"
#include "host/verbs/clouds/oneLine.h"
#include "host/verbs/clouds/runJob.h"
#include "host/verbs/verbs.h"

namespace Zamt::Host {

namespace {

/// The class, by the name that a file of the command has for it where it is written as a number.
std::string classOf(const Request& request, const Stop& stop) {
  const std::string& written = request.text("class");
  if (written.find_first_not_of("0123456789") != std::string::npos) return written;
  for (const CloudClasses& cloud : classesOfFiles(request.texts("cloud"), stop))
    for (const ClassName& named : cloud.names)
      if (std::to_string(named.number) == written) return named.name;
  return written;
}

Answer classify(const Request& request, const Context& context) {
  if (request.text("into") != "into" || request.text("class").empty())
    return refused(Status::Usage, "The word \"into\" and a class stand behind the condition, as in  quindle "
                                  "classify 'z > 430' into \"High Noise\" lake.las -o out.las");
  Job job;
  Answer answer;
  if (!readOneLine(request, classOf(request, context.stop), context, job, answer)) return answer;
  std::string problem;
  const Status planned = readOutputs(request, job, problem);
  if (planned != Status::Done) return refused(planned, problem);
  return carryOut(job, context, std::move(answer));
}

std::vector<Option> classifyOptions() {
  std::vector<Option> options = outputOptions(true);
  options.push_back(outcomesJsonOption());
  return oneLineOptions({{.name = "into",
                          .help = "The word itself.",
                          .placeholder = "into",
                          .argument = true,
                          .required = true,
                          .names = Option::Names::Choice,
                          .choices = {"into"}},
                         {.name = "class",
                          .help = "The class to put the points into: a name, or a number.",
                          .placeholder = "CLASS",
                          .argument = true,
                          .required = true,
                          .names = Option::Names::Class}},
                        std::move(options));
}

} // namespace

Verb classifyVerb() {
  return {.name = "classify",
          .summary = "Put the points that a condition holds for into a class, and write the clouds.",
          .footer = "One of -o and --in-place is needed. A file is replaced whole or not at all.\n"
                    "Example:\n  quindle classify 'Z > 440' into \"High Noise\" lake.las -o out.las",
          .options = classifyOptions(),
          .listName = "clouds",
          .run = classify};
}

} // namespace Zamt::Host
