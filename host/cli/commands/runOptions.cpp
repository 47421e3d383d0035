#include "host/cli/commands/runOptions.h"

#include "host/regions/Region.h"
#include "host/session/QuindleSource.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <fstream>
#include <iterator>

namespace Zamt::Host {

namespace {

/// No run gains from more; a larger number is a slip.
constexpr unsigned maxThreads = 1024;

/// What a region's file may hold, inclusive: far more than any outline drawn by hand or taken from a map.
constexpr std::size_t maxRegionBytes = std::size_t{64} * 1024 * 1024;

bool readText(const std::string& path, std::string& text, std::string& problem) {
  std::ifstream file(path, std::ios::binary);
  std::vector<char> piece(65536);
  while (file && text.size() <= maxRegionBytes) {
    file.read(piece.data(), static_cast<std::streamsize>(piece.size()));
    text.append(piece.data(), static_cast<std::size_t>(file.gcount()));
  }
  if (file.eof()) return true;
  problem = fmt::format("The region's file \"{}\" can't be read. Check the path.", path);
  return false;
}

} // namespace

void addRunOptions(CLI::App& verb, RunOptions& options) {
  verb.add_option("QUINDLE", options.quindle, quindleHelp)->required();
  verb.add_option("CLOUD", options.clouds, "The clouds: LAS files, each worked on by itself.")->required();
  verb.add_option("--set", options.settings,
                  "Give a parameter its value. May be written several times. See \"quindle help values\".")
      ->allow_extra_args(false)
      ->type_name("NAME=VALUE");
  verb.add_option(
          "--region", options.region,
          "Where points may change: a box of four or six numbers, a polygon as WKT or GeoJSON, or @FILE with "
          "one of these in it. See \"quindle help regions\".")
      ->type_name("REGION");
  verb.add_option("--classes", options.classes,
                  "The only classes whose points may change: names or numbers, separated by commas.")
      ->type_name("CLASSES");
  verb.add_option("--threads", options.threads,
                  fmt::format("How many threads to use, at most {}. As many as the machine has if left out.",
                              maxThreads))
      ->check(CLI::Range(1U, maxThreads).description(""))
      ->type_name("N");
  verb.add_flag(
      "--json", options.json,
      "Print JSON: \"clouds\" with file, ok, report, output and changes (class, name, considered, modified, "
      "from) of each, and \"diagnostics\".");
}

bool readSettings(const RunOptions& options, std::map<std::string, std::string>& values,
                  std::string& problem) {
  for (const std::string& setting : options.settings) {
    const std::size_t equals = setting.find('=');
    if (equals == std::string::npos || equals == 0) {
      problem = fmt::format("\"{}\" sets nothing. Write --set NAME=VALUE.", setting);
      return false;
    }
    values[setting.substr(0, equals)] = setting.substr(equals + 1);
  }
  return true;
}

bool readRegionText(const RunOptions& options, std::string& text, std::string& problem) {
  text = options.region;
  if (text.empty()) return true;
  if (text[0] == '@') {
    const std::string path = text.substr(1);
    text.clear();
    if (!readText(path, text, problem)) return false;
  }
  Region region;
  return parseRegion(text, region, problem);
}

} // namespace Zamt::Host
