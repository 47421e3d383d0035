// Whole runs on compressed clouds of ten million points, beside decoding and encoding all of them with the
// plain codec of the tests on one thread.

#include "bench/clouds.h"
#include "bench/scan.h"
#include "host/session/Scene.h"
#include "quindle/text/parseQuindle.h"
#include "tests/laz-judge/LazFile.h"

#include <cstdio>
#include <fstream>
#include <iterator>

namespace Zamt::Host::Bench {
namespace {

constexpr std::uint64_t points = 10 * million;

/// The scan as LAS, which is then written as LAZ.
std::string lazFile(unsigned pointFormat) {
  std::string path = temporary("quindle-bench-scan-" + std::to_string(pointFormat) + ".laz");
  if (std::filesystem::exists(path)) return path;
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
  return path;
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
  double seconds = 0;
};

double megabytes() {
  rusage usage{};
  getrusage(RUSAGE_SELF, &usage);
  return static_cast<double>(usage.ru_maxrss) / 1024;
}

/// The seconds to decode and to encode all points of a file.
std::pair<double, double> yardstick(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  const std::string bytes{std::istreambuf_iterator<char>(in), {}};
  Testing::Laz::LazFile file;
  const double decoding = secondsOf([&] { file = Testing::Laz::decodeLaz(bytes); }, 2);
  const double encoding = secondsOf([&] { Testing::Laz::encodeLaz(file); }, 2);
  return {decoding, encoding};
}

void compare() {
  // The box holds the points of one chunk in ten: the scan goes along Y.
  Case cases[] = {
      {"class, LAZ to LAZ", 6, "class(5)", true},
      {"class, counted", 6, "class(5)", false},
      {"class and intensity, LAZ to LAZ", 6, "class(5) and field(\"Intensity\", 0, 300)", true},
      {"class and intensity, counted", 6, "class(5) and field(\"Intensity\", 0, 300)", false},
      {"every tenth chunk, LAZ to LAZ", 1, "inside(\"-1e6 -1e6 -1e6 1e6 0.7 1e6\")", true},
  };
  for (const unsigned format : {6U, 1U}) lazFile(format);
  std::printf("before any run: %.0f MB\n", megabytes());
  for (Case& each : cases) {
    const std::string path = lazFile(each.pointFormat);
    each.seconds = secondsOf([&] { runOnce(path, each.condition, each.writes); });
    std::printf("%s: %.2f s, peak %.0f MB with the file of %.0f MB\n", each.what, each.seconds, megabytes(),
                static_cast<double>(std::filesystem::file_size(path)) / 1e6);
  }
  for (const unsigned format : {6U, 1U}) {
    const auto [decoding, encoding] = yardstick(lazFile(format));
    std::printf("format %u, plain codec: decodes %.2f and encodes %.2f million points a second\n", format,
                points / decoding / 1e6, points / encoding / 1e6);
    for (const Case& each : cases)
      if (each.pointFormat == format)
        std::printf("%s: %.1f times as fast\n", each.what, (decoding + encoding) / each.seconds);
  }
}

} // namespace
} // namespace Zamt::Host::Bench

int main() {
  Zamt::Host::Bench::compare();
  return 0;
}
