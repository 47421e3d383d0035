// Selecting among ten million points of format 6, and counting neighbours, beside a plain grid. The clouds
// are made once and stay in the directory for temporary files.

#include "bench/clouds.h"
#include "host/clouds/forEachBlock.h"
#include "host/filters/BoxFilter.h"
#include "host/filters/ClassFilter.h"
#include "host/filters/NeighbourFilter.h"
#include "host/filters/RangeFilter.h"
#include "host/filters/Selection.h"

#include <algorithm>
#include <array>
#include <vector>

namespace Zamt::Host {
namespace {

using namespace Bench;

void selectByClassFieldAndBox(benchmark::State& state) {
  const auto cloud = cloudOf(static_cast<std::uint64_t>(state.range(0)));
  const std::array<std::int64_t, 3> classes{2, 3, 6};
  std::uint64_t selected = 0;
  for (auto _ : state) {
    std::string problem;
    std::vector<SelectionStep> steps(3);
    steps[0].filter = makeBoxFilter({{100, 100, 0}, {400, 400, 10}}, problem);
    steps[1] = {0, -1, makeClassFilter(*cloud, "Classification", classes, problem), nullptr, false};
    steps[2] = {1, -1, makeRangeFilter(*cloud, "Intensity", 0, 100, 800, problem), nullptr, false};
    PointMask kept;
    evaluateSelection(*cloud, steps, goOn, kept, problem);
    selected = kept.count();
  }
  report(state, selected);
}

// The yardstick: one thread, a table of all cells of one unit, the points sorted into it by counting.
class PlainGrid {
public:
  explicit PlainGrid(const PointCloud& cloud) {
    std::vector<std::array<double, 3>> unsorted(cloud.size());
    std::string problem;
    const auto read = [&](BlockReader& block) {
      std::vector<double> values(block.size());
      for (std::size_t axis = 0; axis < 3; ++axis) {
        block.axis(axis).read(0, values);
        for (std::size_t i = 0; i < values.size(); ++i) unsorted[block.first() + i][axis] = values[i];
      }
    };
    if (!walkBlocks(cloud, axisColumns, goOn, read, problem)) giveUp(problem);
    for (const auto& p : unsorted)
      for (std::size_t axis = 0; axis < 3; ++axis)
        cells[axis] = std::max(cells[axis], static_cast<std::size_t>(p[axis]) + 3);
    starts.assign(cells[0] * cells[1] * cells[2] + 2, 0);
    for (const auto& p : unsorted) ++starts[cellOf(p) + 2];
    for (std::size_t c = 2; c < starts.size(); ++c) starts[c] += starts[c - 1];
    points.resize(unsorted.size());
    for (const auto& p : unsorted) points[starts[cellOf(p) + 1]++] = p;
  }

  std::uint64_t countLonely(unsigned most) const {
    std::uint64_t lonely = 0;
    for (const auto& p : points) lonely += neighbours(p, most + 1) <= most ? 1 : 0;
    return lonely;
  }

private:
  std::size_t cellOf(const std::array<double, 3>& p) const {
    const auto index = [&](std::size_t axis) { return static_cast<std::size_t>(p[axis]) + 1; };
    return (index(2) * cells[1] + index(1)) * cells[0] + index(0);
  }

  unsigned neighbours(const std::array<double, 3>& p, unsigned enough) const {
    unsigned count = 0;
    for (std::size_t dz = 0; dz < 3; ++dz)
      for (std::size_t dy = 0; dy < 3; ++dy) {
        const std::size_t middle = cellOf(p) + (dz * cells[1] + dy) * cells[0] - (cells[1] + 1) * cells[0];
        for (std::size_t i = starts[middle - 1]; i < starts[middle + 2]; ++i) {
          const double dx = p[0] - points[i][0];
          const double ey = p[1] - points[i][1];
          const double ez = p[2] - points[i][2];
          count += dx * dx + ey * ey + ez * ez <= 1 ? 1 : 0;
        }
        if (count > enough) return count - 1;
      }
    return count - 1;
  }

  std::array<std::size_t, 3> cells{};
  std::vector<std::size_t> starts;
  std::vector<std::array<double, 3>> points;
};

/// Points with up to `most` others within a metre.
void countNeighbours(benchmark::State& state, const PointCloud& cloud, unsigned most) {
  const PointMask asked(cloud.size(), true);
  std::uint64_t selected = 0;
  Stopwatch watch;
  for (auto _ : state)
    watch.run([&] {
      std::string problem;
      PointMask holds(cloud.size());
      makeNeighbourFilter(cloud, 1, 0, most, problem)->test(asked, goOn, holds, problem);
      selected = holds.count();
    });
  report(state, selected);
  std::uint64_t expected = 0;
  const double plain = secondsOf([&] { expected = PlainGrid(cloud).countLonely(most); }, 1);
  if (selected != expected) state.SkipWithError("The plain grid counts otherwise.");
  state.counters["plain grid ms"] = plain * 1e3;
  state.counters["times plain"] = watch.mean() / plain;
}

void neighboursSpread(benchmark::State& state) {
  countNeighbours(state, *cloudOf(static_cast<std::uint64_t>(state.range(0))), 3);
}

void neighboursDense(benchmark::State& state) {
  countNeighbours(state, *openFile(denseCloudFile()), static_cast<unsigned>(state.range(0)));
}

/// About half of the points of the dense cloud have as many neighbours or fewer.
constexpr std::int64_t middle = 820;

BENCHMARK(selectByClassFieldAndBox)
    ->Arg(10 * million)
    ->UseRealTime()
    ->MeasureProcessCPUTime()
    ->Unit(benchmark::kMillisecond);
BENCHMARK(neighboursSpread)
    ->Arg(million)
    ->Arg(10 * million)
    ->UseRealTime()
    ->MeasureProcessCPUTime()
    ->Unit(benchmark::kMillisecond);
BENCHMARK(neighboursDense)
    ->Arg(3)
    ->Arg(middle)
    ->UseRealTime()
    ->MeasureProcessCPUTime()
    ->Unit(benchmark::kMillisecond);

} // namespace
} // namespace Zamt::Host

BENCHMARK_MAIN();
