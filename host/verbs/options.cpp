#include "host/verbs/options.h"

#include <utility>

namespace Zamt::Host {

Option quindleArgument() {
  return {.name = "quindle",
          .help = "The Quindle: a file, the name of one in the collection, or - for standard input.",
          .placeholder = "QUINDLE",
          .argument = true,
          .required = true};
}

Option quindlesArgument() {
  return {.name = "quindle",
          .kind = Option::Kind::Texts,
          .help = "The Quindles: files, names of some in the collection, or - for standard input.",
          .placeholder = "QUINDLE",
          .argument = true,
          .required = true};
}

Option nameArgument() {
  return {.name = "name",
          .help = "Its name; the case of letters does not matter.",
          .placeholder = "NAME",
          .argument = true,
          .required = true};
}

Option jsonOption(std::string help) {
  return {.name = "json", .kind = Option::Kind::Flag, .help = std::move(help)};
}

} // namespace Zamt::Host
