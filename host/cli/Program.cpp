#include "host/cli/Program.h"

#include "host/verbs/verbs.h"

#include <algorithm>
#include <memory>

namespace Zamt::Host {

const Program& quindleProgram() {
  static const auto program = [] {
    auto made = std::make_unique<Program>(Program{
        .name = "quindle",
        .version = "quindle " QUINDLE_VERSION,
        .description = "Runs Quindles on LAS and LAZ files. A Quindle is a small program in a text file: it "
                       "selects points of a "
                       "cloud by conditions and puts them into classes.",
        .footer = "\"quindle help COMMAND\" shows one command, \"quindle help\" lists topics as well.\n"
                  "Example:\n  quindle sample lake.las && quindle info lake.las",
        .help =
            {.name = "help", .kind = Option::Kind::Flag, .help = "Print this help and end.", .letter = 'h'},
        .versionOption = {.name = "version",
                          .kind = Option::Kind::Flag,
                          .help = "Print the version and end."},
        .verbs = allVerbs()});
    const std::string lastGroup = made->verbs.back().group;
    for (const auto& describe : {helpVerb, completionVerb}) {
      made->verbs.push_back(describe(*made));
      made->verbs.back().group = lastGroup;
    }
    return made;
  }();
  return *program;
}

const Verb* findVerb(const Program& program, const std::string& name) {
  const auto found = std::find_if(program.verbs.begin(), program.verbs.end(),
                                  [&](const Verb& verb) { return verb.name == name; });
  return found == program.verbs.end() ? nullptr : &*found;
}

} // namespace Zamt::Host
