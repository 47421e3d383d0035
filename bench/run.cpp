// Whole runs on ten million points of format 6 (300 MB), from opening the cloud to the new file, each beside
// a plain copy of that file.

#include "bench/clouds.h"
#include "host/objects/Scene.h"
#include "host/points/SurfaceFile.h"
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
  Scene scene;
  Diag diag;
  QuindleRunResult result;
  if (!scene.openCloud(cloudFile(points), doc, diag) || !scene.run(doc, {}, output.empty(), result, diag) ||
      (!output.empty() && !scene.writeCloud(output, diag)))
    giveUp(diag.format());
  return scene.changes().at(0).modified;
}

void runAll(benchmark::State& state, const std::string& condition, bool writes) {
  const QuindleDocument doc = quindle(condition);
  const std::string output = writes ? temporary("quindle-bench-out.las") : std::string();
  cloudFile(points);
  std::uint64_t selected = 0;
  for (auto _ : state) selected = runOnce(doc, output);
  report(state, selected);
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

/// The yardstick: the same bytes to another file, flushed to the disk as ours are or not.
void plainCopy(benchmark::State& state, bool flushed) {
  const std::string source = cloudFile(points);
  const std::string target = temporary("quindle-bench-copy.las");
  for (auto _ : state) {
    std::filesystem::copy_file(source, target, std::filesystem::copy_options::overwrite_existing);
    if (!flushed) continue;
    const int file = open(target.c_str(), O_RDONLY | O_CLOEXEC);
    fdatasync(file);
    close(file);
  }
  std::filesystem::remove(target);
}

BENCHMARK_CAPTURE(plainCopy, asItIs, false)->UseRealTime()->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(plainCopy, flushed, true)->UseRealTime()->Unit(benchmark::kMillisecond);
BENCHMARK(classFieldBoxToANewFile)->UseRealTime()->Unit(benchmark::kMillisecond);
BENCHMARK(classFieldBoxAsCounts)->UseRealTime()->Unit(benchmark::kMillisecond);
BENCHMARK(expressionAsCounts)->UseRealTime()->Unit(benchmark::kMillisecond);
BENCHMARK(aboveASurfaceAsCounts)->UseRealTime()->Unit(benchmark::kMillisecond);
BENCHMARK(neighboursAsCounts)->UseRealTime()->Unit(benchmark::kMillisecond);

} // namespace
} // namespace Zamt::Host

BENCHMARK_MAIN();
