// Writing a cloud of ten million points (300 MB) with other classes in none, one in a hundred and all of its
// blocks, beside a copy that is flushed to the disk as well. TMPDIR says on which file system.

#include "bench/clouds.h"
#include "host/clouds/BlockReader.h"
#include "host/clouds/forEachBlock.h"

#include <fcntl.h>
#include <unistd.h>

#include <vector>

namespace Zamt::Host {
namespace {

using namespace Bench;

/// About a thousand points stand next to each other in the stretches that change: some blocks of the disk.
constexpr std::uint64_t stretchPoints = 1024;

void changeClasses(PointCloud& cloud, std::uint64_t percent) {
  std::string problem;
  const auto visit = [&](BlockReader& block) {
    std::vector<std::uint32_t> indices;
    for (std::uint32_t i = 0; i < block.size(); ++i)
      if ((block.first() + i) / stretchPoints % 100 < percent) indices.push_back(i);
    cloud.setClass(block, indices, 20);
  };
  if (!forEachBlock(cloud, {}, goOn, visit, problem)) giveUp(problem);
}

/// As safe as what is written: on the disk before it counts.
void copyFlushed(const std::string& from, const std::string& to) {
  std::filesystem::copy_file(from, to, std::filesystem::copy_options::overwrite_existing);
  const int file = open(to.c_str(), O_RDONLY | O_CLOEXEC);
  fdatasync(file);
  close(file);
}

void writeChanged(benchmark::State& state) {
  const auto cloud = cloudOf(10 * million);
  changeClasses(*cloud, static_cast<std::uint64_t>(state.range(0)));
  const std::string output = temporary("quindle-bench-out.las");
  const std::string copy = temporary("quindle-bench-copy.las");
  std::string error;
  Stopwatch watch;
  Stopwatch copyWatch;
  for (auto _ : state) {
    watch.run([&] {
      if (!cloud->write({}, output, goOn, error)) giveUp(error);
    });
    state.PauseTiming();
    copyWatch.run([&] { copyFlushed(cloudFile(10 * million), copy); });
    state.ResumeTiming();
  }
  std::filesystem::remove(output);
  std::filesystem::remove(copy);
  state.counters["copy ms"] = copyWatch.least() * 1e3;
  state.counters["least ms"] = watch.least() * 1e3;
  state.counters["times a copy"] = watch.least() / copyWatch.least();
}

BENCHMARK(writeChanged)
    ->Arg(0)
    ->Arg(1)
    ->Arg(100)
    ->Iterations(7)
    ->UseRealTime()
    ->Unit(benchmark::kMillisecond);

} // namespace
} // namespace Zamt::Host

BENCHMARK_MAIN();
