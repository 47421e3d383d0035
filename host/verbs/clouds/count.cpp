#include "host/verbs/clouds/oneLine.h"
#include "host/verbs/options.h"
#include "host/verbs/verbs.h"

namespace Zamt::Host {

namespace {

Answer count(const Request& request, const Context& context) {
  Job job;
  Answer answer;
  if (!readOneLine(request, {}, context, job, answer)) return answer;
  for (const std::string& file : request.texts("cloud")) job.clouds.push_back({file, {}});
  return selectPoints(job, context, std::move(answer));
}

} // namespace

Verb countVerb() {
  return {.name = "count",
          .summary = "Count the points of clouds that a condition holds for. Nothing is written.",
          .footer = "Numbers in the condition are parameters, called as --quindle shows: "
                    "--set gives them other values.\n"
                    "Example:\n  quindle count 'class(\"Ground\") and neighbours(1) <= 3' lake.las",
          .options = oneLineOptions({}, {jsonOption(selectedJsonHelp)}),
          .run = count};
}

} // namespace Zamt::Host
