#pragma once

#include "host/clouds/laz/LazChunks.h"
#include "host/clouds/laz/LazDecoder.h"
#include "tests/support/TemporaryDirectory.h"

#include <algorithm>
#include <cstring>
#include <string>
#include <string_view>
#include <vector>

namespace Zamt::Testing {

using Host::LazChunk;
using Host::LazChunks;
using Host::LazFormat;
using Bytes = std::vector<std::byte>;

/// A LAZ file as far as the codec needs its header.
class LazFile {
public:
  explicit LazFile(Bytes content) : bytes(std::move(content)) { read(); }
  static LazFile at(const std::string& path) {
    const std::string text = readFile(path);
    const auto data = std::as_bytes(std::span(text));
    return LazFile({data.begin(), data.end()});
  }

  bool good() const { return error.empty(); }
  /// Where the chunk table is, behind all chunks.
  std::size_t tableAt() const {
    return chunks.chunks.empty() ? chunks.end - 8 : chunks.chunks.back().offset + chunks.chunks.back().size;
  }
  std::span<const std::byte> chunk(const LazChunk& chunk) const {
    return std::span(bytes).subspan(chunk.offset, chunk.size);
  }

  /// The points of a chunk; `error` says why there are none.
  Bytes records(std::size_t number) {
    const LazChunk& chunk_ = chunks.chunks[number];
    Bytes records(chunk_.points * format.recordLength);
    Host::LazDecoder decoder(format);
    std::string damage;
    if (!decoder.decode(chunk(chunk_), chunk_.points, recordColumns(format, records.data()), damage)) {
      error = Host::chunkDamaged("a.laz", number, chunk_.offset, damage);
      records.clear();
    }
    return records;
  }

  /// All points, as far as they can be decoded.
  Bytes allRecords() {
    Bytes all;
    for (std::size_t i = 0; i < chunks.chunks.size() && good(); ++i) {
      const Bytes some = records(i);
      all.insert(all.end(), some.begin(), some.end());
    }
    return all;
  }

  Bytes bytes;
  LazFormat format;
  LazChunks chunks;
  std::string error;

private:
  template <class T>
  T number(std::size_t at) const {
    T value;
    std::memcpy(&value, &bytes.at(at + sizeof(T) - 1) - (sizeof(T) - 1), sizeof(T));
    return value;
  }

  void read() {
    const bool is14 = bytes.at(25) == std::byte{4};
    Host::LazPointData data{number<std::uint32_t>(96), number<std::uint32_t>(107), 0};
    if (is14 && number<std::uint64_t>(247) != 0) data.points = number<std::uint64_t>(247);
    if (is14 && number<std::uint32_t>(243) != 0) data.evlrStart = number<std::uint64_t>(235);
    const unsigned pointFormat = number<std::uint8_t>(104) & 0x3FU;
    if (readLazFormat(lazRecord(), pointFormat, number<std::uint16_t>(105), "a.laz", format, error))
      findLazChunks(format, bytes, data, "a.laz", chunks, error);
  }

  std::span<const std::byte> lazRecord() const {
    std::size_t at = number<std::uint16_t>(94);
    for (std::uint32_t i = 0; i < number<std::uint32_t>(100); ++i) {
      const std::size_t size = number<std::uint16_t>(at + 20);
      if (std::memcmp(&bytes.at(at + 2), Host::lazUserId, std::strlen(Host::lazUserId)) == 0)
        return std::span(bytes).subspan(at + 54, size);
      at += 54 + size;
    }
    return {};
  }
};

} // namespace Zamt::Testing
