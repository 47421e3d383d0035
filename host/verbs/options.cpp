#include "host/verbs/options.h"

#include <fmt/format.h>

#include <utility>

namespace Zamt::Host {

Option quindleArgument() {
  return {.name = "quindle",
          .help = "The Quindle: a file, the name of one in the collection, or - for standard input.",
          .placeholder = "QUINDLE",
          .argument = true,
          .required = true,
          .names = Option::Names::Quindle};
}

Option quindlesArgument() {
  return {.name = "quindle",
          .kind = Option::Kind::Texts,
          .help = "The Quindles: files, names of some in the collection, or - for standard input.",
          .placeholder = "QUINDLE",
          .argument = true,
          .required = true,
          .names = Option::Names::Quindle};
}

Option nameArgument() {
  return {.name = "name",
          .help = "Its name; the case of letters does not matter.",
          .placeholder = "NAME",
          .argument = true,
          .required = true,
          .names = Option::Names::Entry};
}

Option setOption() {
  return {.name = "set",
          .kind = Option::Kind::Texts,
          .help = "Give a parameter its value. May be written several times. See \"quindle help values\".",
          .placeholder = "NAME=VALUE",
          .names = Option::Names::Setting};
}

bool readSettings(const std::vector<std::string>& settings, std::map<std::string, std::string>& values,
                  std::string& problem) {
  for (const std::string& setting : settings) {
    const std::size_t equals = setting.find('=');
    if (equals == std::string::npos || equals == 0) {
      problem = fmt::format("\"{}\" sets nothing. Write --set NAME=VALUE.", setting);
      return false;
    }
    values[setting.substr(0, equals)] = setting.substr(equals + 1);
  }
  return true;
}

Option jsonOption(std::string help) {
  return {.name = "json", .kind = Option::Kind::Flag, .help = std::move(help)};
}

} // namespace Zamt::Host
