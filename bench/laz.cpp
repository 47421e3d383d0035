// Decoding and encoding of LAZ by one thread, in processor time: ten million points of a made-up airborne
// scan in the order of the scanner, about six bytes a point when coded.

#include "host/clouds/laz/LazClassEncoder.h"
#include "host/clouds/laz/bytes.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <map>
#include <vector>

namespace Zamt::Host {
namespace {

constexpr std::uint64_t pointCount = 10'000'000;

/// Noise that depends on nothing but the calls before.
class Noise {
public:
  std::uint32_t bits() {
    state = state * 6364136223846793005U + 1442695040888963407U;
    return static_cast<std::uint32_t>(state >> 33);
  }
  /// Below `limit`.
  std::uint32_t below(std::uint32_t limit) {
    return static_cast<std::uint32_t>(std::uint64_t{bits()} * limit >> 31);
  }
  /// About as the normal distribution, of that deviation.
  double normal(double deviation) {
    double sum = 0;
    for (int i = 0; i < 4; ++i) sum += static_cast<double>(bits()) * 0x1p-31 - 0.5;
    return sum * deviation * 1.7;
  }

private:
  std::uint64_t state = 7;
};

/// A scanner that sweeps to and fro over terrain with woods and houses. Lengths in millimetres.
class Scan {
public:
  explicit Scan(const LazFormat& format_) : format(format_) {}

  void next(std::byte* record) {
    if (returnsLeft == 0) nextPulse();
    const unsigned number = returns - returnsLeft + 1;
    --returnsLeft;
    const double x = across + noise.normal(110);
    const double y = along + noise.normal(110);
    const double z = ground(x, y) + height(number) + noise.normal(20);
    Laz::store(record, static_cast<std::int32_t>(x));
    Laz::store(record + 4, static_cast<std::int32_t>(y));
    Laz::store(record + 8, static_cast<std::int32_t>(z));
    const double bright = (wood ? 400 : 900) / number + noise.normal(40);
    Laz::store(record + 12, static_cast<std::uint16_t>(std::max(1.0, bright)));
    const unsigned last = number == returns ? 1 : 0;
    const unsigned aClass = wood ? (last && noise.below(4) == 0 ? 2 : 5 - last) : house ? 6 : 2;
    const unsigned user = noise.below(8) == 0 ? noise.below(16) : 3;
    const bool edge = std::abs(across) > halfSwath - spacing;
    if (format.isLayered()) {
      Laz::store(record + 14, static_cast<std::uint8_t>(number | returns << 4));
      Laz::store(record + 15, static_cast<std::uint8_t>((forward ? 0x40 : 0) | (edge ? 0x80 : 0)));
      Laz::store(record + 16, static_cast<std::uint8_t>(aClass));
      Laz::store(record + 17, static_cast<std::uint8_t>(user));
      Laz::store(record + 18, static_cast<std::int16_t>(across / halfSwath * 3300));
      Laz::store(record + 20, std::uint16_t{17});
      Laz::store(record + 22, time);
    } else {
      Laz::store(record + 14,
                 static_cast<std::uint8_t>(number | returns << 3 | (forward ? 0x40 : 0) | (edge ? 0x80 : 0)));
      Laz::store(record + 15, static_cast<std::uint8_t>(aClass));
      Laz::store(record + 16, static_cast<std::int8_t>(across / halfSwath * 20));
      Laz::store(record + 17, static_cast<std::uint8_t>(user));
      Laz::store(record + 18, std::uint16_t{17});
      Laz::store(record + 20, time);
    }
  }

private:
  static constexpr double halfSwath = 250'000;
  static constexpr double spacing = 500;

  void nextPulse() {
    across += forward ? spacing : -spacing;
    if (std::abs(across) > halfSwath) {
      forward = !forward;
      along += spacing;
    }
    time += 2.5e-6;
    wood = std::sin(across / 31'000) + std::sin(along / 23'000) > 0.7;
    house = !wood && std::sin(across / 7'000) * std::sin(along / 9'000) > 0.75;
    returns = wood ? 1 + noise.below(4) : 1;
    returnsLeft = returns;
  }

  static double ground(double x, double y) {
    return 300'000 + 9'000 * std::sin(x / 40'000) + 12'000 * std::sin(y / 70'000) + 300 * std::sin(x / 3'000);
  }

  double height(unsigned number) {
    if (house) return 6'000;
    return wood && number < returns ? 15'000.0 / number + noise.normal(1'500) : 0;
  }

  const LazFormat& format;
  Noise noise;
  double across = -halfSwath;
  double along = 0;
  double time = 2.1e8;
  bool forward = true;
  bool wood = false;
  bool house = false;
  unsigned returns = 1;
  unsigned returnsLeft = 0;
};

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
