#include "host/filters/neighbours/KeySort.h"

#include <algorithm>
#include <oneapi/tbb/parallel_for.h>
#include <utility>
#include <vector>

namespace Zamt::Host {
namespace {

/// 2^11 counters, and as many places being written to, still fit the first-level cache.
constexpr unsigned maximumDigitBits = 11;

/// Entries that one task counts and moves.
constexpr std::size_t chunkEntries = std::size_t{1} << 18;

struct Digit {
  unsigned shift = 0;
  std::size_t values = 0;
  std::size_t of(std::uint64_t key) const { return static_cast<std::size_t>(key >> shift) & (values - 1); }
};

/// Calls `work(chunk, begin, end)` for all chunks, in parallel.
template <typename Work>
void forEachChunk(std::size_t count, Work work) {
  const std::size_t chunks = (count + chunkEntries - 1) / chunkEntries;
  tbb::parallel_for(std::size_t{0}, chunks, [&](std::size_t chunk) {
    work(chunk, chunk * chunkEntries, std::min(count, (chunk + 1) * chunkEntries));
  });
}

/// Turns counts by chunk and digit into the place where each chunk's first entry of that digit goes.
void turnIntoPlaces(std::vector<std::size_t>& counts, std::size_t values) {
  std::size_t place = 0;
  for (std::size_t value = 0; value < values; ++value)
    for (std::size_t at = value; at < counts.size(); at += values) place += std::exchange(counts[at], place);
}

void sortByDigit(const KeyedPoints& from, KeyedPoints& to, Digit digit) {
  const std::size_t chunks = (from.count + chunkEntries - 1) / chunkEntries;
  std::vector<std::size_t> places(chunks * digit.values, 0);
  forEachChunk(from.count, [&](std::size_t chunk, std::size_t begin, std::size_t end) {
    std::size_t* counts = &places[chunk * digit.values];
    for (std::size_t i = begin; i < end; ++i) ++counts[digit.of(from.keys[i])];
  });
  turnIntoPlaces(places, digit.values);
  forEachChunk(from.count, [&](std::size_t chunk, std::size_t begin, std::size_t end) {
    std::size_t* place = &places[chunk * digit.values];
    for (std::size_t i = begin; i < end; ++i) {
      const std::size_t target = place[digit.of(from.keys[i])]++;
      to.keys[target] = from.keys[i];
      to.points[target] = from.points[i];
    }
  });
}

} // namespace

void sortByKey(KeyedPoints& keyed, unsigned bits) {
  if (keyed.count < 2 || bits == 0) return;
  const unsigned passes = (bits + maximumDigitBits - 1) / maximumDigitBits;
  const unsigned digitBits = (bits + passes - 1) / passes;
  KeyedPoints other(keyed.count);
  for (unsigned pass = 0; pass < passes; ++pass) {
    sortByDigit(keyed, other, {pass * digitBits, std::size_t{1} << digitBits});
    std::swap(keyed, other);
  }
}

} // namespace Zamt::Host
