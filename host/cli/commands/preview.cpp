#include "host/cli/commands/commands.h"
#include "host/cli/runClouds.h"

#include <memory>

namespace Zamt::Host {

namespace {

struct PreviewVerb {
  RunOptions options;
  std::string picture;
};

Exit preview(const PreviewVerb& verb, Console& console) {
  if (verb.picture.empty() || verb.options.clouds.size() == 1)
    return runClouds(verb.options, {}, verb.picture, console);
  console.error("A picture shows one cloud. Preview them one at a time.");
  return Exit::Usage;
}

} // namespace

void addPreviewCommand(CLI::App& app, Session& session) {
  auto own = std::make_shared<PreviewVerb>();
  CLI::App* verb = addVerb(app, "preview", "Say what a Quindle would change, and write nothing.");
  addRunOptions(*verb, own->options);
  verb->add_option("--picture", own->picture,
                   "Draw the cloud into this PNG file, with what would change in front. For one cloud only.")
      ->type_name("FILE.png");
  verb->footer("Example:\n  quindle preview examples/isolated-noise.quindle lake.las --set radius=3");
  verb->callback([own, &session] { session.exit = preview(*own, session.console); });
}

} // namespace Zamt::Host
