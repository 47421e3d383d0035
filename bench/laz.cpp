// Decoding and encoding of LAZ by one thread, in processor time: ten million points of a made-up airborne
// scan in the order of the scanner, about six bytes a point when coded.

#include "bench/scan.h"
#include "host/clouds/laz/LazClassEncoder.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <map>
#include <vector>

namespace Zamt::Host {
namespace {

using Bench::Scan;

constexpr std::uint64_t pointCount = 10'000'000;

struct Cloud {
  LazFormat format;
  std::vector<std::byte> bytes;
  struct Chunk {
    std::size_t offset, size, points;
  };
  std::vector<Chunk> chunks;

  std::span<const std::byte> chunk(const Chunk& chunk) const {
    return std::span(bytes).subspan(chunk.offset, chunk.size);
  }
};

const Cloud& cloudOf(unsigned pointFormat) {
  static std::map<unsigned, Cloud> clouds;
  Cloud& cloud = clouds[pointFormat];
  if (!cloud.chunks.empty()) return cloud;
  cloud.format = newLazFormat(pointFormat, 0);
  LazEncoder encoder(cloud.format);
  Scan scan(cloud.format);
  std::vector<std::byte> records(cloud.format.chunkSize * cloud.format.recordLength);
  for (std::uint64_t done = 0; done < pointCount; done += cloud.format.chunkSize) {
    for (std::size_t at = 0; at < records.size(); at += cloud.format.recordLength) scan.next(&records[at]);
    const std::size_t offset = cloud.bytes.size();
    encoder.add(records);
    encoder.finish(cloud.bytes);
    cloud.chunks.push_back({offset, cloud.bytes.size() - offset, cloud.format.chunkSize});
  }
  return cloud;
}

void report(benchmark::State& state, const Cloud& cloud) {
  state.SetItemsProcessed(static_cast<std::int64_t>(pointCount) * state.iterations());
  state.counters["bytes a point"] = static_cast<double>(cloud.bytes.size()) / static_cast<double>(pointCount);
}

void need(bool done, const std::string& damage) {
  if (done) return;
  std::fprintf(stderr, "%s\n", damage.c_str());
  std::exit(EXIT_FAILURE);
}

/// Decodes the parts of these kinds, or all.
void decode(benchmark::State& state, unsigned pointFormat, const std::vector<LazPartKind>& kinds) {
  const Cloud& cloud = cloudOf(pointFormat);
  LazDecoder decoder(cloud.format);
  std::vector<std::vector<std::byte>> arrays;
  std::vector<LazColumn> columns;
  for (const LazPart& part : cloud.format.parts) {
    const bool isWanted = kinds.empty() || std::ranges::find(kinds, part.kind) != kinds.end();
    arrays.emplace_back(isWanted ? part.size * std::size_t{cloud.format.chunkSize} : 0);
    columns.push_back({isWanted ? arrays.back().data() : nullptr, part.size});
  }
  std::string damage;
  for (auto _ : state)
    for (const Cloud::Chunk& chunk : cloud.chunks)
      need(decoder.decode(cloud.chunk(chunk), chunk.points, columns, damage), damage);
  report(state, cloud);
}

void decodeAll(benchmark::State& state) { decode(state, static_cast<unsigned>(state.range(0)), {}); }
void decodeClasses(benchmark::State& state) { decode(state, 6, {LazPartKind::Classification}); }
void decodeClassesAndIntensities(benchmark::State& state) {
  decode(state, 6, {LazPartKind::Classification, LazPartKind::Intensity});
}

void encodeAll(benchmark::State& state) {
  const Cloud& cloud = cloudOf(static_cast<unsigned>(state.range(0)));
  LazDecoder decoder(cloud.format);
  LazEncoder encoder(cloud.format);
  std::vector<std::byte> records(cloud.format.chunkSize * cloud.format.recordLength);
  const auto columns = recordColumns(cloud.format, records.data());
  std::vector<std::byte> bytes;
  std::string damage;
  const auto& chunk = cloud.chunks[cloud.chunks.size() / 2];
  need(decoder.decode(cloud.chunk(chunk), chunk.points, columns, damage), damage);
  for (auto _ : state)
    for (std::size_t i = 0; i < cloud.chunks.size(); ++i) {
      bytes.clear();
      encoder.add(records);
      encoder.finish(bytes);
    }
  report(state, cloud);
}

/// Other classes for every point, with the contexts at hand or decoded once more.
void encodeClasses(benchmark::State& state) {
  const Cloud& cloud = cloudOf(static_cast<unsigned>(state.range(0)));
  const bool hasContexts = state.range(1) != 0;
  LazDecoder decoder(cloud.format);
  LazClassEncoder encoder(cloud.format);
  std::vector<std::uint8_t> classes(cloud.format.chunkSize);
  std::vector<std::uint8_t> contexts(hasContexts ? classes.size() : 0);
  std::vector<LazColumn> columns(cloud.format.parts.size());
  columns[cloud.format.partAt(cloud.format.isLayered() ? 16 : 15)] = {
      reinterpret_cast<std::byte*>(classes.data()), 1};
  const auto& chunk = cloud.chunks[cloud.chunks.size() / 2];
  std::string damage;
  need(decoder.decode(cloud.chunk(chunk), chunk.points, columns, damage, contexts), damage);
  for (std::uint8_t& each : classes) each = each == 5 ? 1 : each;
  std::vector<std::byte> changed;
  for (auto _ : state)
    for (std::size_t i = 0; i < cloud.chunks.size(); ++i) {
      changed.clear();
      need(encoder.encode(cloud.chunk(chunk), classes, contexts, changed, damage), damage);
    }
  report(state, cloud);
}

BENCHMARK(decodeAll)->Arg(6)->Arg(1)->Unit(benchmark::kMillisecond);
BENCHMARK(decodeClasses)->Unit(benchmark::kMillisecond);
BENCHMARK(decodeClassesAndIntensities)->Unit(benchmark::kMillisecond);
BENCHMARK(encodeAll)->Arg(6)->Arg(1)->Unit(benchmark::kMillisecond);
BENCHMARK(encodeClasses)->Args({6, 1})->Args({6, 0})->Args({1, 0})->Unit(benchmark::kMillisecond);

} // namespace
} // namespace Zamt::Host

BENCHMARK_MAIN();
