// Selecting among ten million points of format 6, and counting neighbours, beside a plain grid. The clouds
// are made once and stay in the directory for temporary files.

#include "host/points/BoxFilter.h"
#include "host/points/ClassFilter.h"
#include "host/points/NeighbourFilter.h"
#include "host/points/RangeFilter.h"
#include "host/points/Selection.h"

#include <benchmark/benchmark.h>
#include <sys/resource.h>

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <memory>
#include <random>
#include <string>
#include <vector>

namespace Zamt::Host {
namespace {

// With this many points in a unit of volume, a point has about eight others within one unit.
constexpr double pointsPerVolume = 1.9;
constexpr double height = 20;
constexpr double hundredths = 100;
constexpr std::size_t headerBytes = 375;
constexpr std::size_t recordBytes = 30;

template <typename T>
void put(std::string& bytes, std::size_t offset, T value) {
  const auto raw = std::bit_cast<std::array<char, sizeof(T)>>(value);
  std::copy(raw.begin(), raw.end(), bytes.begin() + static_cast<std::ptrdiff_t>(offset));
}

std::string makeHeader(std::uint64_t points) {
  std::string bytes(headerBytes, '\0');
  put(bytes, 0, std::array<char, 4>{'L', 'A', 'S', 'F'});
  put<std::uint8_t>(bytes, 24, 1);
  put<std::uint8_t>(bytes, 25, 4);
  put<std::uint16_t>(bytes, 94, headerBytes);
  put<std::uint32_t>(bytes, 96, headerBytes);
  put<std::uint8_t>(bytes, 104, 6);
  put<std::uint16_t>(bytes, 105, recordBytes);
  for (std::size_t axis = 0; axis < 3; ++axis) put(bytes, 131 + axis * 8, 1 / hundredths);
  put(bytes, 247, points);
  return bytes;
}

// Spread evenly and in random order, which is the worst order for a grid.
void writeCloud(const std::string& path, std::uint64_t points) {
  std::mt19937_64 random(1);
  const auto below = [&](double limit) { return static_cast<double>(random() >> 11) * 0x1p-53 * limit; };
  const double side = std::sqrt(static_cast<double>(points) / pointsPerVolume / height);
  std::ofstream out(path, std::ios::binary);
  out << makeHeader(points);
  std::string record(recordBytes, '\0');
  for (std::uint64_t i = 0; i < points; ++i) {
    put(record, 0, static_cast<std::int32_t>(below(side * hundredths)));
    put(record, 4, static_cast<std::int32_t>(below(side * hundredths)));
    put(record, 8, static_cast<std::int32_t>(below(height * hundredths)));
    put(record, 12, static_cast<std::uint16_t>(below(1000)));
    put(record, 16, static_cast<std::uint8_t>(below(10)));
    out << record;
  }
}

std::shared_ptr<PointCloud> openCloud(std::uint64_t points) {
  const std::string path =
      (std::filesystem::temp_directory_path() / ("quindle-bench-" + std::to_string(points) + ".las"))
          .string();
  std::error_code missing;
  if (std::filesystem::file_size(path, missing) != headerBytes + points * recordBytes)
    writeCloud(path, points);
  std::string error;
  std::shared_ptr<PointCloud> cloud = PointCloud::open(path, error);
  if (cloud) return cloud;
  std::cerr << error << '\n';
  std::exit(1);
}

void report(benchmark::State& state, std::uint64_t selected) {
  rusage usage{};
  getrusage(RUSAGE_SELF, &usage);
  state.counters["selected"] = static_cast<double>(selected);
  state.counters["peakMB"] = static_cast<double>(usage.ru_maxrss) / 1024;
}

void selectByClassFieldAndBox(benchmark::State& state) {
  const auto cloud = openCloud(static_cast<std::uint64_t>(state.range(0)));
  const std::array<std::int64_t, 3> classes{2, 3, 6};
  std::uint64_t selected = 0;
  for (auto _ : state) {
    std::string problem;
    std::vector<SelectionStep> steps(3);
    steps[0].filter = makeBoxFilter(*cloud, {{100, 100, 0}, {400, 400, 10}}, problem);
    steps[1] = {0, -1, makeClassFilter(*cloud, "Classification", classes, problem), nullptr, false};
    steps[2] = {1, -1, makeRangeFilter(*cloud, "Intensity", 0, 100, 800, problem), nullptr, false};
    PointMask kept;
    evaluateSelection(*cloud, steps, kept, problem);
    selected = kept.count();
  }
  report(state, selected);
}

void countNeighbours(benchmark::State& state) {
  const auto cloud = openCloud(static_cast<std::uint64_t>(state.range(0)));
  const PointMask asked(cloud->size(), true);
  std::uint64_t selected = 0;
  for (auto _ : state) {
    std::string problem;
    PointMask holds(cloud->size());
    makeNeighbourFilter(*cloud, 1, 0, 3, problem)->test(asked, holds, problem);
    selected = holds.count();
  }
  report(state, selected);
}

// The yardstick: one thread, a table of all cells of one unit, the points sorted into it by counting.
class PlainGrid {
public:
  explicit PlainGrid(const PointCloud& cloud) {
    std::vector<std::array<double, 3>> unsorted(cloud.size());
    for (std::uint64_t i = 0; i < cloud.size(); ++i) {
      unsorted[i] = cloud.position(i);
      for (std::size_t axis = 0; axis < 3; ++axis)
        cells[axis] = std::max(cells[axis], static_cast<std::size_t>(unsorted[i][axis]) + 3);
    }
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

void countNeighboursPlainly(benchmark::State& state) {
  const auto cloud = openCloud(static_cast<std::uint64_t>(state.range(0)));
  std::uint64_t selected = 0;
  for (auto _ : state) selected = PlainGrid(*cloud).countLonely(3);
  report(state, selected);
}

constexpr std::int64_t million = 1000000;

BENCHMARK(selectByClassFieldAndBox)->Arg(10 * million)->UseRealTime()->Unit(benchmark::kMillisecond);
BENCHMARK(countNeighbours)->Arg(million)->Arg(10 * million)->UseRealTime()->Unit(benchmark::kMillisecond);
BENCHMARK(countNeighboursPlainly)
    ->Arg(million)
    ->Arg(10 * million)
    ->Iterations(1)
    ->UseRealTime()
    ->Unit(benchmark::kMillisecond);

} // namespace
} // namespace Zamt::Host

BENCHMARK_MAIN();
