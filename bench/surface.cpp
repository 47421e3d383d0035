#include "host/points/Surface.h"
#include "host/points/Expression.h"
#include "host/points/PointMask.h"

#include <benchmark/benchmark.h>
#include <sys/resource.h>
#include <tbb/blocked_range.h>
#include <tbb/enumerable_thread_specific.h>
#include <tbb/parallel_for.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <cmath>
#include <random>
#include <vector>

namespace {

using namespace Zamt::Host;

constexpr std::size_t pointCount = 10'000'000;
constexpr double extent = 1000;

/// Coordinates as a LAS file stores them: whole millimetres, along flight lines or in no order.
struct Points {
  std::array<std::vector<std::int32_t>, 3> stored;

  explicit Points(bool shuffled) {
    std::mt19937 random(1);
    std::uniform_int_distribution<std::int32_t> any(0, static_cast<std::int32_t>(extent * 1000) - 1);
    for (auto& column : stored) column.resize(pointCount);
    for (std::size_t i = 0; i < pointCount; ++i) {
      const double way = static_cast<double>(i) / pointCount * 100;
      stored[0][i] =
          shuffled ? any(random) : static_cast<std::int32_t>((way - std::floor(way)) * extent * 1000);
      stored[1][i] =
          shuffled ? any(random) : static_cast<std::int32_t>(std::floor(way) * 10000) + any(random) / 100;
      stored[2][i] = any(random) / 20;
    }
  }

  double at(std::size_t axis, std::size_t i) const { return stored[axis][i] * 0.001; }
};

const Points& points(bool shuffled) {
  static const Points ordered(false);
  static const Points random(true);
  return shuffled ? random : ordered;
}

/// 100,352 triangles with bumps.
const Surface& terrain() {
  static const Surface surface = [] {
    constexpr std::uint32_t side = 224;
    Mesh mesh;
    std::mt19937 random(2);
    std::uniform_real_distribution<double> jitter(-0.4, 0.4);
    for (std::uint32_t r = 0; r <= side; ++r)
      for (std::uint32_t c = 0; c <= side; ++c)
        mesh.vertices.push_back({(c + jitter(random)) * extent / side, (r + jitter(random)) * extent / side,
                                 25 + 10 * jitter(random)});
    for (std::uint32_t r = 0; r < side; ++r)
      for (std::uint32_t c = 0; c < side; ++c) {
        const std::uint32_t v = r * (side + 1) + c;
        mesh.triangles.push_back({v, v + 1, v + side + 2});
        mesh.triangles.push_back({v, v + side + 2, v + side + 1});
      }
    return Surface(mesh);
  }();
  return surface;
}

template <typename Holds>
std::size_t countParallel(Holds&& holds) {
  std::atomic<std::size_t> total{0};
  tbb::parallel_for(tbb::blocked_range<std::size_t>(0, pointCount, blockPoints), [&](const auto& range) {
    std::size_t count = 0;
    for (std::size_t i = range.begin(); i < range.end(); ++i) count += holds(i) ? 1 : 0;
    total += count;
  });
  return total;
}

void report(benchmark::State& state) {
  rusage usage{};
  getrusage(RUSAGE_SELF, &usage);
  state.counters["peak MiB"] = static_cast<double>(usage.ru_maxrss) / 1024;
  state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(pointCount));
}

/// The yardstick: every coordinate looked at once.
void readAndCompare(benchmark::State& state) {
  const Points& p = points(state.range(0) != 0);
  for (auto _ : state)
    benchmark::DoNotOptimize(
        countParallel([&](std::size_t i) { return p.at(0, i) >= 0 && p.at(1, i) >= 0 && p.at(2, i) > 25; }));
  report(state);
}

void aboveSurface(benchmark::State& state) {
  const Points& p = points(state.range(0) != 0);
  const Surface& surface = terrain();
  for (auto _ : state)
    tbb::parallel_for(tbb::blocked_range<std::size_t>(0, pointCount, blockPoints), [&](const auto& range) {
      constexpr std::size_t tile = 1024;
      std::array<std::array<double, tile>, 3> columns;
      std::array<double, tile> distances;
      for (std::size_t start = range.begin(); start < range.end(); start += tile) {
        const std::size_t count = std::min(tile, range.end() - start);
        for (std::size_t axis = 0; axis < 3; ++axis)
          for (std::size_t i = 0; i < count; ++i) columns[axis][i] = p.at(axis, start + i);
        surface.verticalDistances(columns[0], columns[1], columns[2], std::span(distances).first(count));
        benchmark::DoNotOptimize(
            std::count_if(distances.begin(), distances.end(), [](double d) { return d > 0; }));
      }
    });
  report(state);
}

void buildSurfaceIndex(benchmark::State& state) {
  for (auto _ : state) {
    Mesh mesh;
    std::mt19937 random(3);
    std::uniform_real_distribution<double> any(0, 1000);
    for (std::uint32_t i = 0; i < 100'000; ++i) {
      const double x = any(random);
      const double y = any(random);
      mesh.vertices.insert(mesh.vertices.end(), {{x, y, 0}, {x + 3, y, 0}, {x, y + 3, 0}});
      mesh.triangles.push_back({3 * i, 3 * i + 1, 3 * i + 2});
    }
    benchmark::DoNotOptimize(Surface(mesh).size());
  }
}

void expression(benchmark::State& state) {
  const Points& p = points(false);
  const std::vector<ExpressionName> names{{"Intensity"}, {"Z"}};
  std::string problem;
  const auto compiled = Expression::compile("Intensity > 120 and z < 4.5", names, problem);
  if (!compiled) return state.SkipWithError(problem.c_str());
  const std::size_t tile = compiled->columnLength();
  tbb::enumerable_thread_specific<std::array<std::vector<double>, 4>> rooms;
  for (auto _ : state)
    tbb::parallel_for(tbb::blocked_range<std::size_t>(0, pointCount, blockPoints), [&](const auto& range) {
      auto& room = rooms.local();
      for (auto& column : room) column.resize(std::max(tile, column.size()));
      for (std::size_t start = range.begin(); start < range.end(); start += tile) {
        const std::size_t count = std::min(tile, range.end() - start);
        for (std::size_t i = 0; i < count; ++i) {
          room[0][i] = p.at(0, start + i);
          room[1][i] = p.at(2, start + i);
        }
        const std::array<std::span<const double>, 2> columns{std::span(room[0]).first(count),
                                                             std::span(room[1]).first(count)};
        compiled->evaluate(columns, room[2], std::span(room[3]).first(count));
      }
      benchmark::DoNotOptimize(room[3].data());
    });
  report(state);
}

BENCHMARK(readAndCompare)->Arg(0)->Arg(1)->UseRealTime()->Unit(benchmark::kMillisecond);
BENCHMARK(aboveSurface)->Arg(0)->Arg(1)->UseRealTime()->Unit(benchmark::kMillisecond);
BENCHMARK(buildSurfaceIndex)->UseRealTime()->Unit(benchmark::kMillisecond);
BENCHMARK(expression)->UseRealTime()->Unit(benchmark::kMillisecond);

} // namespace

BENCHMARK_MAIN();
