// The codec of LAZ, without a file around it. The first bytes choose the format; the rest is taken for the
// chunks of a file, for one chunk, and for points whose chunk is then damaged.

#include "fuzz/require.h"
#include "host/clouds/laz/LazChunks.h"
#include "host/clouds/laz/LazClassEncoder.h"

#include <algorithm>
#include <cstring>

using namespace Zamt::Host;
using Zamt::Fuzz::require;
using Zamt::Fuzz::requireSentence;

namespace {

using Bytes = std::vector<std::byte>;
constexpr std::size_t mostPoints = 600;

std::size_t classAt(const LazFormat& format) { return format.isLayered() ? 16 : 15; }
std::uint8_t classMask(const LazFormat& format) { return format.isLayered() ? 0xFF : 0x1F; }

bool decodeRecords(const LazFormat& format, std::span<const std::byte> chunk, std::size_t points,
                   Bytes& records) {
  records.assign(points * format.recordLength, std::byte{0});
  LazDecoder decoder(format);
  std::string damage;
  const bool done = decoder.decode(chunk, points, recordColumns(format, records.data()), damage);
  require(done || !damage.empty(), "what is damaged is said");
  return done;
}

Bytes encoded(const LazFormat& format, const Bytes& records) {
  LazEncoder encoder(format);
  encoder.add(records);
  Bytes chunk;
  encoder.finish(chunk);
  return chunk;
}

/// Other classes, given to the chunk or to the points of it, come out the same.
void changeClasses(const LazFormat& format, std::span<const std::byte> chunk, Bytes records) {
  const std::size_t length = format.recordLength;
  std::vector<std::uint8_t> classes(records.size() / length);
  for (std::size_t i = 0; i < classes.size(); ++i) {
    std::byte& byte = records[i * length + classAt(format)];
    const std::byte mask{classMask(format)};
    if (i % 5 == 0) byte = (byte & ~mask) | (std::byte{7} & mask);
    classes[i] = std::to_integer<std::uint8_t>(byte & mask);
  }
  LazClassEncoder encoder(format);
  Bytes changed;
  std::string damage;
  require(encoder.encode(chunk, classes, {}, changed, damage), "what was decoded can be changed");
  Bytes again;
  require(decodeRecords(format, changed, classes.size(), again), "what was changed can be decoded");
  require(again == records, "nothing but the classes changes");
}

/// A layer by itself gives what it gives beside all others.
void decodeAlone(const LazFormat& format, std::span<const std::byte> chunk, const Bytes& records,
                 std::size_t part) {
  const auto [kind, offset, size] = format.parts[part];
  const std::size_t points = records.size() / format.recordLength;
  Bytes values(points * size);
  std::vector<LazColumn> columns(format.parts.size());
  columns[part] = {values.data(), size};
  LazDecoder decoder(format);
  std::string damage;
  require(decoder.decode(chunk, points, columns, damage), "each part can be decoded by itself");
  for (std::size_t i = 0; i < points; ++i)
    require(std::memcmp(&values[i * size], &records[i * format.recordLength + offset], size) == 0,
            "a part by itself is the part of the record");
}

void takeForChunk(const LazFormat& format, std::span<const std::byte> chunk, std::size_t points) {
  Bytes records;
  if (!decodeRecords(format, chunk, points, records)) return;
  Bytes again;
  require(decodeRecords(format, encoded(format, records), points, again), "what was encoded can be decoded");
  require(again == records, "points come out as they went in");
  changeClasses(format, chunk, records);
  decodeAlone(format, chunk, records, points % format.parts.size());
}

void takeForPoints(const LazFormat& format, std::span<const std::byte> bytes, std::uint32_t damageAt) {
  const std::size_t points = std::min(bytes.size() / format.recordLength, mostPoints);
  if (points == 0) return;
  const Bytes records(bytes.begin(),
                      bytes.begin() + static_cast<std::ptrdiff_t>(points * format.recordLength));
  Bytes chunk = encoded(format, records);
  Bytes again;
  require(decodeRecords(format, chunk, points, again), "what was encoded can be decoded");
  require(again == records, "points come out as they went in");
  chunk[damageAt % chunk.size()] ^= static_cast<std::byte>(1 + (damageAt >> 24) % 255);
  takeForChunk(format, chunk, points);
}

void takeForFile(const LazFormat& format, std::span<const std::byte> bytes, std::uint64_t points) {
  LazChunks found;
  std::string error;
  if (!findLazChunks(format, bytes, {0, points, bytes.size()}, "a.laz", found, error)) {
    requireSentence(error);
    return;
  }
  std::uint64_t next = 0;
  for (const LazChunk& chunk : found.chunks) {
    require(chunk.firstPoint == next && chunk.points > 0, "chunks follow each other");
    require(chunk.offset + chunk.size <= bytes.size(), "chunks lie within the file");
    next += chunk.points;
  }
  require(next == points, "every point is in a chunk");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  constexpr std::size_t head = 8;
  if (size < head) return 0;
  std::uint32_t number = 0;
  std::memcpy(&number, data + 4, sizeof number);
  LazFormat format = newLazFormat(data[1] % 11, 0, data[2] % 64);
  format = newLazFormat(format.pointFormat, format.recordLength + data[3] % 4, format.chunkSize);
  if (data[3] & 0x80 && format.isLayered())
    for (LazItem& item : format.items) item.version = 4;
  const auto bytes = std::as_bytes(std::span(data + head, size - head));
  LazFormat read;
  std::string error;
  if (!readLazFormat(bytes, format.pointFormat, format.recordLength, "a.laz", read, error))
    requireSentence(error);
  switch (data[0] % 3) {
  case 0: takeForFile(format, bytes, number % 100000); break;
  case 1: takeForChunk(format, bytes, 1 + number % mostPoints); break;
  default: takeForPoints(format, bytes, number); break;
  }
  return 0;
}
