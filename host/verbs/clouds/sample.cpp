#include "host/sample/SampleFiles.h"
#include "host/verbs/options.h"
#include "host/verbs/texts.h"
#include "host/verbs/verbs.h"

#include <fmt/format.h>

#include <filesystem>
#include <string>

namespace Zamt::Host {

namespace {

/// Inclusive. The generator keeps up to three bytes of each point, so that this many take some 400 MB.
constexpr std::uint64_t maxSamplePoints = 100'000'000;
constexpr std::uint64_t defaultSamplePoints = 200'000;
constexpr std::uint64_t defaultSeed = 1;

/// A scene by its numbers, and its files.
struct Sample {
  std::string cloud;
  std::string surface;
  std::uint64_t points = 0;
  std::uint64_t seed = 0;
};

/// "lake-water.ply" beside "lake.las".
std::string waterPath(const std::string& output) {
  const std::filesystem::path path(output);
  return (path.parent_path() / (path.stem().string() + "-water.ply")).string();
}

/// Empty when neither of the files is there yet.
std::string occupied(const Sample& sample) {
  std::error_code error;
  for (const std::string& path : {sample.cloud, sample.surface})
    if (std::filesystem::exists(path, error))
      return fmt::format("There is already a file \"{}\". Name another, or write --force to replace it.",
                         path);
  return {};
}

std::string sampleText(const Sample& sample) {
  return fmt::format("{0}: {2} of hills, a lake, plants, houses and noise\n"
                     "{1}: the water surface of the lake\n"
                     "Try next:\n"
                     "  quindle info {0}\n"
                     "  quindle preview examples/underwater-ground.quindle {0} --set water={1}\n",
                     sample.cloud, sample.surface, countOf(sample.points, "point"));
}

Data sampleData(const Sample& sample) {
  return Fields{
      {"cloud", sample.cloud}, {"surface", sample.surface}, {"points", sample.points}, {"seed", sample.seed}};
}

/// False with a sentence in `problem`.
bool make(const Sample& sample, const Stop& stop, std::string& problem) {
  const SampleScene scene = makeSampleScene(sample.points, sample.seed);
  if (!stop.requested()) return writeSample(scene, sample.cloud, sample.surface, stop, problem);
  problem = stoppedMessage;
  return false;
}

Answer makeSample(const Request& request, const Context& context) {
  const std::string& output = request.text("out");
  const Sample sample{output, waterPath(output), request.number("points", defaultSamplePoints),
                      request.number("seed", defaultSeed)};
  if (const std::string refusal = occupied(sample); !request.flag("force") && !refusal.empty())
    return refused(Status::Usage, refusal);
  std::string problem;
  if (make(sample, context.stop, problem)) return answerOf(partOf({}, sample, sampleText, sampleData));
  Diag diag;
  diag.error(problem);
  return answerOf({std::move(diag), {}, {}, {}});
}

} // namespace

Verb sampleVerb() {
  return {.name = "sample",
          .summary =
              "Make a cloud to try Quindles on. The surface of its lake is written beside it as PLY. The "
              "same numbers give the same files.",
          .footer = "Example:\n  quindle sample lake.las --seed 2",
          .options = {{.name = "out",
                       .help = "The LAS file to make; LAZ if its name ends in .laz.",
                       .placeholder = "OUT",
                       .argument = true,
                       .required = true,
                       .names = Option::Names::CloudOutput},
                      {.name = "points",
                       .kind = Option::Kind::Number,
                       .help = fmt::format("How many points, at most {}.", grouped(maxSamplePoints)),
                       .placeholder = "N",
                       .least = 1,
                       .most = maxSamplePoints,
                       .preset = defaultSamplePoints},
                      {.name = "seed",
                       .kind = Option::Kind::Number,
                       .help = "Another number, another scene.",
                       .placeholder = "N",
                       .preset = defaultSeed},
                      {.name = "force",
                       .kind = Option::Kind::Flag,
                       .help = "Replace files that are there already."},
                      jsonOption("Print JSON: \"cloud\", \"surface\", \"points\", \"seed\" and "
                                 "\"diagnostics\".")},
          .run = makeSample};
}

} // namespace Zamt::Host
