// Whole runs on compressed clouds of ten million points, beside decoding and encoding all of them with the
// plain codec of the tests on one thread. Times are those on the clock and those of the processors together:
// where others are at work on the machine, half of the latter is what two cores of its own would take.

#include "bench/clouds.h"
#include "bench/scan.h"
#include "host/clouds/forEachBlock.h"
#include "host/session/Scene.h"
#include "quindle/text/parseQuindle.h"
#include "tests/laz-judge/LazFile.h"

#include <oneapi/tbb/global_control.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <ctime>
#include <fstream>
#include <iterator>

namespace Zamt::Host::Bench {
namespace {

constexpr std::uint64_t points = 10 * million;

/// What some work takes, the least of a few tries: by the clock, and of all processors together.
struct Cost {
  double seconds = 0;
  double processor = 0;
};

double processorSeconds() {
  timespec time{};
  clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
  return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) * 1e-9;
}

template <class Work>
Cost costOf(const Work& work, int tries = 3) {
  Cost cost;
  cost.processor = std::numeric_limits<double>::infinity();
  const auto timed = [&] {
    const double before = processorSeconds();
    work();
    cost.processor = std::min(cost.processor, processorSeconds() - before);
  };
  cost.seconds = secondsOf(timed, tries);
  return cost;
}

std::string lazPath(unsigned pointFormat) {
  return temporary("quindle-bench-scan-" + std::to_string(pointFormat) + ".laz");
}

/// The scan as LAS, which is then written as LAZ.
void makeLazFile(unsigned pointFormat) {
  const std::string path = lazPath(pointFormat);
  const std::string las = temporary("quindle-bench-scan.las");
  NewCloud description;
  description.pointFormat = pointFormat;
  std::string error;
  if (!buildCloud(
          description, points, [](std::uint64_t, NewPoint&) {}, las, goOn, error))
    giveUp(error);
  const LazFormat format = newLazFormat(pointFormat, 0);
  {
    std::fstream file(las, std::ios::binary | std::ios::in | std::ios::out);
    std::uint32_t start = 0;
    file.seekg(96);
    file.read(reinterpret_cast<char*>(&start), sizeof(start));
    file.seekp(start);
    Scan scan(format);
    std::vector<std::byte> record(format.recordLength);
    for (std::uint64_t i = 0; i < points; ++i) {
      scan.next(record.data());
      file.write(reinterpret_cast<const char*>(record.data()), static_cast<std::streamsize>(record.size()));
    }
  }
  const auto cloud = openCloud(las, error);
  if (!cloud || !cloud->write({}, path, goOn, error)) giveUp(error);
  std::filesystem::remove(las);
}

/// Makes the files in a process of its own, whose memory is not that of the runs.
void makeFiles() {
  for (const unsigned format : {6U, 1U}) {
    if (std::filesystem::exists(lazPath(format))) continue;
    const pid_t child = fork();
    if (child == 0) {
      makeLazFile(format);
      _exit(EXIT_SUCCESS);
    }
    waitpid(child, nullptr, 0);
  }
}

/// Runs a condition on a file, and writes what comes of it unless only counts are wanted.
void runOnce(const std::string& path, const std::string& condition, bool writes) {
  Scene scene(goOn);
  Diag diag;
  QuindleDocument doc;
  const std::string text = "quindle \"Bench\" { param cloud : Grid = active on run { select " + condition +
                           " classify into \"Rail\" } }";
  if (!parseQuindle(text, "bench", doc, diag)) giveUp(diag.format());
  QuindleRunResult result;
  if (!scene.openCloud(path, doc, diag) || !scene.run(doc, {}, !writes, result, diag) ||
      (writes && !scene.writeCloud(temporary("quindle-bench-out.laz"), diag)))
    giveUp(diag.format());
}

struct Case {
  const char* what;
  unsigned pointFormat;
  const char* condition;
  bool writes;
  Cost cost = {};
};

double megabytes() {
  rusage usage{};
  getrusage(RUSAGE_SELF, &usage);
  return static_cast<double>(usage.ru_maxrss) / 1024;
}

/// What one thread takes to decode and to encode all points of a file, in seconds of its processor.
std::pair<double, double> yardstick(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  const std::string bytes{std::istreambuf_iterator<char>(in), {}};
  Testing::Laz::LazFile file;
  const Cost decoding = costOf([&] { file = Testing::Laz::decodeLaz(bytes); }, 2);
  const Cost encoding = costOf([&] { Testing::Laz::encodeLaz(file); }, 2);
  return {decoding.processor, encoding.processor};
}

/// Has every column of a file decoded by so many threads.
Cost allColumns(const std::string& path, std::size_t threads) {
  const tbb::global_control control(tbb::global_control::max_allowed_parallelism, threads);
  std::string error;
  const auto cloud = openCloud(path, error);
  if (!cloud) giveUp(error);
  std::vector<ColumnKey> all;
  for (const Field& field : cloud->fields())
    for (unsigned component = 0; component < field.components; ++component)
      all.push_back(cloud->keyOf(field, component));
  return costOf([&] {
    const auto visit = [&](BlockReader& block) {
      for (const ColumnKey key : all) block.column(cloud->fields()[key.field], key.component);
    };
    if (!forEachBlock(*cloud, all, goOn, visit, error)) giveUp(error);
  });
}

void compareAllColumns(double decoding) {
  const Cost one = allColumns(lazPath(6), 1);
  const Cost two = allColumns(lazPath(6), 2);
  std::printf("all columns: one thread %.2f s, two %.2f s (%.2f s of processors), %.2f times as fast; one "
              "core %.2f times as fast as the plain codec decodes\n",
              one.seconds, two.seconds, two.processor, one.seconds / two.seconds, decoding / two.processor);
}

void compare() {
  // The box holds the points of one chunk in ten: the scan goes along Y.
  Case cases[] = {
      {"class, counted", 6, "class(5)", false},
      {"class and intensity, counted", 6, "class(5) and field(\"Intensity\", 0, 300)", false},
      {"class, LAZ to LAZ", 6, "class(5)", true},
      {"class and intensity, LAZ to LAZ", 6, "class(5) and field(\"Intensity\", 0, 300)", true},
      {"every tenth chunk, LAZ to LAZ", 1, "inside(\"-1e6 -1e6 -1e6 1e6 0.7 1e6\")", true},
  };
  makeFiles();
  std::printf("before any run: %.0f MB\n", megabytes());
  for (Case& each : cases) {
    const std::string path = lazPath(each.pointFormat);
    each.cost = costOf([&] { runOnce(path, each.condition, each.writes); });
    std::printf("%s: %.2f s, %.2f s of processors, peak %.0f MB with the file of %.0f MB\n", each.what,
                each.cost.seconds, each.cost.processor, megabytes(),
                static_cast<double>(std::filesystem::file_size(path)) / (1 << 20));
  }
  for (const unsigned format : {6U, 1U}) {
    const auto [decoding, encoding] = yardstick(lazPath(format));
    std::printf("format %u, plain codec: decodes %.2f and encodes %.2f million points a second\n", format,
                points / decoding / 1e6, points / encoding / 1e6);
    for (const Case& each : cases)
      if (each.pointFormat == format)
        std::printf("%s: %.1f times as fast by the clock, %.1f with two cores of its own\n", each.what,
                    (decoding + encoding) / each.cost.seconds,
                    2 * (decoding + encoding) / each.cost.processor);
    if (format == 6) compareAllColumns(decoding);
  }
}

} // namespace
} // namespace Zamt::Host::Bench

int main() {
  Zamt::Host::Bench::compare();
  return 0;
}
