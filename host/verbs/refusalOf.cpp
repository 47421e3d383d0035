#include "host/verbs/Verb.h"

#include <fmt/format.h>

#include <algorithm>
#include <filesystem>
#include <string_view>
#include <system_error>

namespace Zamt::Host {

namespace {

/// Case does not matter.
bool endsIn(const std::string& path, std::string_view ending) {
  const auto same = [](char a, char b) { return (a >= 'A' && a <= 'Z' ? a - 'A' + 'a' : a) == b; };
  return path.size() >= ending.size() && std::equal(path.end() - static_cast<std::ptrdiff_t>(ending.size()),
                                                    path.end(), ending.begin(), same);
}

/// Whether a path is a directory's, there or not, or that of a device or the like: what is wrong with these
/// is told by who writes.
bool isNoFile(const std::string& path) {
  std::error_code unknown;
  return path.ends_with('/') ||
         (std::filesystem::exists(path, unknown) && !std::filesystem::is_regular_file(path, unknown));
}

std::string refusalOf(Option::Names names, const std::string& value) {
  if (names == Option::Names::Cloud && value == "-")
    return "A cloud can't be read from standard input, since its points are read in any order. Write it to a "
           "file, and name that.";
  if (names == Option::Names::CloudOutput && !endsIn(value, ".las") && !endsIn(value, ".laz") &&
      !isNoFile(value))
    return fmt::format(
        "\"{}\" does not say how to write the cloud. Let the name end in .las or .laz, or name a "
        "directory that is there.",
        value);
  if (names == Option::Names::Picture && !endsIn(value, ".png"))
    return fmt::format("\"{}\" is no name for a picture, which is a PNG file. Let it end in .png.", value);
  return {};
}

} // namespace

std::string refusalOf(const std::vector<Option>& options, const Request& request) {
  for (const Option& option : options) {
    std::vector<std::string> values = request.texts(option.name);
    if (!request.text(option.name).empty()) values.push_back(request.text(option.name));
    for (const std::string& value : values)
      if (std::string why = refusalOf(option.names, value); !why.empty()) return why;
  }
  return {};
}

} // namespace Zamt::Host
