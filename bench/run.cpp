// Whole runs on ten million points of format 6 (300 MB), from opening the cloud to the new file, each beside
// a plain copy of that file.

#include "bench/clouds.h"
#include "host/session/Scene.h"
#include "host/surfaces/SurfaceFile.h"
#include "quindle/text/parseQuindle.h"

#include <fcntl.h>
#include <unistd.h>

namespace Zamt::Host {
namespace {

using namespace Bench;

constexpr std::uint64_t points = 10 * million;

QuindleDocument quindle(const std::string& condition) {
  QuindleDocument doc;
  Diag diag;
  const std::string text = "quindle \"Bench\" { param cloud : Grid = active on run { select " + condition +
                           " classify into \"Rail\" } }";
  if (!parseQuindle(text, "bench", doc, diag)) giveUp(diag.format());
  return doc;
}

/// Opens the cloud, runs the Quindle and, unless `output` is empty, writes the result.
std::uint64_t runOnce(const QuindleDocument& doc, const std::string& output) {
  Scene scene(goOn);
  Diag diag;
  QuindleRunResult result;
  if (!scene.openCloud(cloudFile(points), doc, diag) || !scene.run(doc, {}, output.empty(), result, diag) ||
      (!output.empty() && !scene.writeCloud(output, diag)))
    giveUp(diag.format());
  return scene.changes().at(0).modified;
}

/// The yardstick: the same bytes to another file, not flushed to the disk.
void copyOnce(const std::string& target) {
  std::filesystem::copy_file(cloudFile(points), target, std::filesystem::copy_options::overwrite_existing);
}

double copySeconds() {
  static const double seconds = [] {
    const std::string target = temporary("quindle-bench-copy.las");
    const double least = secondsOf([&] { copyOnce(target); });
    std::filesystem::remove(target);
    return least;
  }();
  return seconds;
}

void runAll(benchmark::State& state, const std::string& condition, bool writes) {
  const QuindleDocument doc = quindle(condition);
  const std::string output = writes ? temporary("quindle-bench-out.las") : std::string();
  cloudFile(points);
  std::uint64_t selected = 0;
  Stopwatch watch;
  for (auto _ : state) watch.run([&] { selected = runOnce(doc, output); });
  report(state, selected);
  state.counters["times a copy"] = watch.mean() / copySeconds();
  if (writes) std::filesystem::remove(output);
}

const char* const classFieldAndBox =
    "class(\"Ground, Low Vegetation, Building\") and field(\"Intensity\", 100, 800) and "
    "inside(\"100 100 0 400 400 10\")";

void classFieldBoxToANewFile(benchmark::State& state) { runAll(state, classFieldAndBox, true); }
void classFieldBoxAsCounts(benchmark::State& state) { runAll(state, classFieldAndBox, false); }
void neighboursAsCounts(benchmark::State& state) { runAll(state, "neighbours(1)", false); }
void expressionAsCounts(benchmark::State& state) {
  runAll(state, "expr(\"Intensity > 120 and z < 4.5\")", false);
}

/// A rolling surface of about a hundred thousand triangles over the whole cloud.
std::string surfaceFile() {
  constexpr std::uint32_t steps = 224;
  const double side = cloudSide(points);
  Mesh mesh;
  for (std::uint32_t row = 0; row <= steps; ++row)
    for (std::uint32_t column = 0; column <= steps; ++column)
      mesh.vertices.push_back({side * column / steps, side * row / steps, mixed(row, column) * cloudHeight});
  for (std::uint32_t row = 0; row < steps; ++row)
    for (std::uint32_t column = 0; column < steps; ++column) {
      const std::uint32_t corner = row * (steps + 1) + column;
      mesh.triangles.push_back({corner, corner + 1, corner + steps + 2});
      mesh.triangles.push_back({corner, corner + steps + 2, corner + steps + 1});
    }
  std::string problem;
  const std::string path = temporary("quindle-bench-surface.ply");
  if (!writePly(path, mesh, problem)) giveUp(problem);
  return path;
}

void aboveASurfaceAsCounts(benchmark::State& state) {
  runAll(state, "above(\"" + surfaceFile() + "\")", false);
}

/// A copy as safe as what a run writes: on the disk before it counts.
void flushedCopy(benchmark::State& state) {
  const std::string target = temporary("quindle-bench-copy.las");
  Stopwatch watch;
  const auto copyAndFlush = [&target] {
    copyOnce(target);
    const int file = open(target.c_str(), O_RDONLY | O_CLOEXEC);
    fdatasync(file);
    close(file);
  };
  for (auto _ : state) watch.run(copyAndFlush);
  std::filesystem::remove(target);
  state.counters["times a copy"] = watch.mean() / copySeconds();
}

void plainCopy(benchmark::State& state) {
  const std::string target = temporary("quindle-bench-copy.las");
  for (auto _ : state) copyOnce(target);
  std::filesystem::remove(target);
}

BENCHMARK(plainCopy)->UseRealTime()->Unit(benchmark::kMillisecond);
BENCHMARK(flushedCopy)->UseRealTime()->Unit(benchmark::kMillisecond);
BENCHMARK(classFieldBoxToANewFile)->UseRealTime()->Unit(benchmark::kMillisecond);
BENCHMARK(classFieldBoxAsCounts)->UseRealTime()->Unit(benchmark::kMillisecond);
BENCHMARK(expressionAsCounts)->UseRealTime()->Unit(benchmark::kMillisecond);
BENCHMARK(aboveASurfaceAsCounts)->UseRealTime()->Unit(benchmark::kMillisecond);
BENCHMARK(neighboursAsCounts)->UseRealTime()->Unit(benchmark::kMillisecond);

} // namespace
} // namespace Zamt::Host

BENCHMARK_MAIN();
