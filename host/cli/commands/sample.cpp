#include "files/Interruption.h"
#include "host/cli/commands/commands.h"
#include "host/sample/SampleFiles.h"

#include <CLI/App.hpp>
#include <CLI/Validators.hpp>
#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include <filesystem>
#include <memory>
#include <string>

namespace Zamt::Host {

namespace {

/// The generator keeps all points in memory; this many (inclusive) take some 8 GB.
constexpr std::uint64_t maxSamplePoints = 100'000'000;
constexpr std::uint64_t defaultSamplePoints = 200'000;

struct SampleOptions {
  std::string output;
  std::uint64_t points = defaultSamplePoints;
  std::uint64_t seed = 1;
  bool force = false;
  bool json = false;
};

/// "lake-water.ply" beside "lake.las".
std::string waterPath(const std::string& output) {
  const std::filesystem::path path(output);
  return (path.parent_path() / (path.stem().string() + "-water.ply")).string();
}

/// Empty when the scene may be written to these files.
std::string occupied(const SampleOptions& options, const std::string& surfacePath) {
  std::error_code error;
  for (const std::string& path : {options.output, surfacePath})
    if (!options.force && std::filesystem::exists(path, error))
      return fmt::format("There is already a file \"{}\". Name another, or write --force to replace it.",
                         path);
  return {};
}

void printMade(const SampleOptions& options, const std::string& surfacePath, Console& console) {
  if (options.json) {
    console.printJson({{"cloud", options.output},
                       {"surface", surfacePath},
                       {"points", options.points},
                       {"seed", options.seed},
                       {"diagnostics", nlohmann::json::array()}});
    return;
  }
  console.printLine(fmt::format("{}: {} of hills, a lake, plants, houses and noise", options.output,
                                countOf(options.points, "point")));
  console.printLine(fmt::format("{}: the water surface of the lake", surfacePath));
  console.printLine("Try next:");
  console.printLine(fmt::format("  quindle info {}", options.output));
  console.printLine(fmt::format("  quindle preview examples/underwater-ground.quindle {} --set water={}",
                                options.output, surfacePath));
}

Exit makeSample(const SampleOptions& options, Console& console) {
  const std::string surfacePath = waterPath(options.output);
  const std::string refusal = occupied(options, surfacePath);
  if (!refusal.empty()) {
    console.error(refusal);
    return Exit::Usage;
  }
  std::string problem;
  const SampleScene scene = makeSampleScene(options.points, options.seed);
  if (interrupted)
    problem = interruptedMessage;
  else if (writeSample(scene, options.output, surfacePath, problem)) {
    printMade(options, surfacePath, console);
    return Exit::Done;
  }
  Diag diag;
  diag.error(problem);
  if (options.json)
    console.printJson({{"diagnostics", diagnosticsJson(diag)}});
  else
    console.report(diag);
  return Exit::Failed;
}

} // namespace

void addSampleCommand(CLI::App& app, Session& session) {
  auto options = std::make_shared<SampleOptions>();
  CLI::App* verb = addVerb(app, "sample",
                           "Make a cloud to try Quindles on. The surface of its lake is written "
                           "beside it as PLY. The same numbers give the same files.");
  verb->add_option("OUT", options->output, "The LAS file to make.")->required();
  verb->add_option("--points", options->points,
                   fmt::format("How many points, at most {}.", grouped(maxSamplePoints)))
      ->check(CLI::Range(std::uint64_t{1}, maxSamplePoints).description(""))
      ->capture_default_str()
      ->type_name("N");
  verb->add_option("--seed", options->seed, "Another number, another scene.")
      ->capture_default_str()
      ->type_name("N");
  verb->add_flag("--force", options->force, "Replace files that are there already.");
  verb->add_flag("--json", options->json,
                 "Print JSON: \"cloud\", \"surface\", \"points\", \"seed\" and \"diagnostics\".");
  verb->footer("Example:\n  quindle sample lake.las --seed 2");
  verb->callback([options, &session] { session.exit = makeSample(*options, session.console); });
}

} // namespace Zamt::Host
