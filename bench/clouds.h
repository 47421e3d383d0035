#pragma once

#include "host/clouds/buildCloud.h"
#include "host/clouds/openCloud.h"

#include <benchmark/benchmark.h>
#include <sys/resource.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <limits>
#include <string>

// The clouds of the benchmarks: made once, kept in the directory for temporary files.
namespace Zamt::Host::Bench {

inline constexpr std::int64_t million = 1'000'000;

/// With this many points in a cubic metre, a point has about eight others within a metre.
inline constexpr double pointsPerVolume = 1.9;
inline constexpr double cloudHeight = 20;

/// The side of the square that a cloud of that many points covers, in metres.
inline double cloudSide(std::uint64_t points) {
  return std::sqrt(static_cast<double>(points) / pointsPerVolume / cloudHeight);
}

/// A number from 0 up to 1 that looks random and depends on nothing but its arguments.
inline double mixed(std::uint64_t point, std::uint64_t column) {
  std::uint64_t z = (point * 8 + column + 1) * 0x9E3779B97F4A7C15U;
  z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9U;
  z = (z ^ (z >> 27)) * 0x94D049BB133111EBU;
  return static_cast<double>((z ^ (z >> 31)) >> 11) * 0x1p-53;
}

[[noreturn]] inline void giveUp(const std::string& why) {
  std::cerr << why << '\n';
  std::exit(1);
}

/// For work that nobody stops.
inline const Stop goOn;

inline std::string temporary(const std::string& name) {
  return (std::filesystem::temp_directory_path() / name).string();
}

/// A file of format 6, 30 bytes a point, with points at places that depend on their number only.
template <class Place>
std::string makeCloudFile(const std::string& name, std::uint64_t points, const Place& place) {
  std::string path = temporary("quindle-bench-" + name + ".las");
  if (std::filesystem::exists(path)) return path;
  const auto fill = [&place](std::uint64_t i, NewPoint& point) {
    point.position = place(i);
    point.intensity = static_cast<std::uint16_t>(mixed(i, 3) * 1000);
    point.classification = static_cast<std::uint8_t>(mixed(i, 4) * 10);
  };
  NewCloud description;
  description.scale = {0.01, 0.01, 0.01};
  std::string error;
  if (!buildCloud(description, points, fill, path, goOn, error)) giveUp(error);
  return path;
}

/// Points that are spread evenly and in random order, which is the worst for an index.
inline std::string cloudFile(std::uint64_t points) {
  const double side = cloudSide(points);
  return makeCloudFile(std::to_string(points), points, [side](std::uint64_t i) {
    return std::array{mixed(i, 0) * side, mixed(i, 1) * side, mixed(i, 2) * cloudHeight};
  });
}

/// Ten million points on three hectares of rolling ground, a fifth of them in what grows up to 15 m high on
/// it. A point on the ground has about 850 others within a metre.
inline std::string denseCloudFile() {
  return makeCloudFile("dense", 10 * million, [](std::uint64_t i) {
    constexpr double side = 173.2;
    const double x = mixed(i, 0) * side;
    const double y = mixed(i, 1) * side;
    const double ground = 10 + 4 * std::sin(x / 20) + 3 * std::cos(y / 15);
    const double above = mixed(i, 5) < 0.2 ? mixed(i, 2) * 15 : mixed(i, 2) * 0.1;
    return std::array{x, y, ground + above};
  });
}

inline std::shared_ptr<PointCloud> openFile(const std::string& path) {
  std::string error;
  auto cloud = openCloud(path, error);
  if (!cloud) giveUp(error);
  return cloud;
}

inline std::shared_ptr<PointCloud> cloudOf(std::uint64_t points) { return openFile(cloudFile(points)); }

/// The seconds that `work` takes: the least of a few tries, for a yardstick.
template <class Work>
double secondsOf(const Work& work, int tries = 3) {
  double least = std::numeric_limits<double>::infinity();
  for (int i = 0; i < tries; ++i) {
    const auto start = std::chrono::steady_clock::now();
    work();
    least = std::min(least, std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count());
  }
  return least;
}

/// Adds up the time of the iterations, to be set against a yardstick.
class Stopwatch {
public:
  template <class Work>
  void run(const Work& work) {
    const double took = secondsOf(work, 1);
    seconds += took;
    least_ = std::min(least_, took);
    ++rounds;
  }
  double least() const { return least_; }
  double mean() const { return rounds > 0 ? seconds / rounds : 0; }

private:
  double seconds = 0;
  double least_ = std::numeric_limits<double>::infinity();
  int rounds = 0;
};

/// Puts what was selected and the process's peak memory, the mapped file included, beside the time.
inline void report(benchmark::State& state, std::uint64_t selected) {
  rusage usage{};
  getrusage(RUSAGE_SELF, &usage);
  state.counters["selected"] = static_cast<double>(selected);
  state.counters["peakMB"] = static_cast<double>(usage.ru_maxrss) / 1024;
}

} // namespace Zamt::Host::Bench
