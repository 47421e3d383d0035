#include "host/cli/OutputPlan.h"
#include "host/cli/commands/commands.h"
#include "host/cli/runClouds.h"

#include <memory>

namespace Zamt::Host {

namespace {

struct RunVerb {
  RunOptions options;
  OutputRequest output;
};

Exit run(const RunVerb& verb, Console& console) {
  OutputRequest request = verb.output;
  request.inputs = verb.options.clouds;
  std::vector<std::string> outputs;
  std::string problem;
  const Exit planned = planOutputs(request, outputs, problem);
  if (planned == Exit::Done) return runClouds(verb.options, outputs, {}, console);
  console.error(problem);
  return planned;
}

} // namespace

void addRunCommand(CLI::App& app, Session& session) {
  auto own = std::make_shared<RunVerb>();
  CLI::App* verb = addVerb(app, "run", "Run a Quindle on clouds and write them.");
  addRunOptions(*verb, own->options);
  CLI::Option* output =
      verb->add_option("-o,--output", own->output.output,
                       "Where to write: a file, or a directory that is there, which several clouds need.")
          ->type_name("OUT");
  verb->add_flag("--in-place", own->output.inPlace, "Write each cloud over itself.")->excludes(output);
  verb->footer("One of -o and --in-place is needed. A file is replaced whole or not at all.\n"
               "Example:\n  quindle run examples/isolated-noise.quindle lake.las -o out.las");
  verb->callback([own, &session] { session.exit = run(*own, session.console); });
}

} // namespace Zamt::Host
