#include "host/clouds/laz/LazChunks.h"

#include "host/clouds/laz/IntegerCoder.h"
#include "host/clouds/laz/LazDecoder.h"
#include "host/clouds/laz/PointLayers.h"
#include "host/clouds/laz/RangeDecoder.h"
#include "host/clouds/laz/RangeEncoder.h"

#include <algorithm>
#include <limits>
#include <memory>

namespace Zamt::Host {

using namespace Laz;

namespace {

constexpr std::size_t tableHead = 8;

/// Codes the numbers of a chunk table, each predicted by that of the chunk before.
template <class Coder>
class TableCoder {
public:
  explicit TableCoder(bool hasCounts) : hasCounts_(hasCounts) { numbers_.reset(); }

  void code(Coder& coder, std::uint32_t& count, std::uint32_t& bytes) {
    if (hasCounts_) count = lastCount_ = numbers_.code(coder, lastCount_, count, 0);
    bytes = lastBytes_ = numbers_.code(coder, lastBytes_, bytes, 1);
  }

private:
  bool hasCounts_;
  std::uint32_t lastCount_ = 0;
  std::uint32_t lastBytes_ = 0;
  IntegerCoder<Coder, 32, 2> numbers_;
};

/// Finds the chunks of one file.
class ChunkFinder {
public:
  ChunkFinder(const LazFormat& format, std::span<const std::byte> file, const LazPointData& data)
      : format_(format), file_(file), data_(data), firstChunk_(data.offset + sizeof(std::int64_t)) {}

  std::string find(LazChunks& found) {
    if (firstChunk_ < data_.offset || firstChunk_ > file_.size()) return "it ends before its first chunk";
    if (readAnyTable(found)) return {};
    // A file without points may end behind a place that says nothing.
    if (data_.points == 0 && !tellsOfPoints_) {
      found = {{}, false, firstChunk_};
      return {};
    }
    if (tellsOfPoints_) return problem_;
    if (format_.isVariable()) return problem_ + ", and without it chunks of different sizes can't be found";
    return walk(found);
  }

private:
  bool readAnyTable(LazChunks& found) {
    const auto place = load<std::int64_t>(&file_[data_.offset]);
    const auto at = static_cast<std::uint64_t>(place);
    if (place == -1) {
      problem_ = "its compressor could not say where the chunk table is";
      return readTableSaidAt(file_.size(), found) ||
             (data_.evlrStart != 0 && readTableSaidAt(data_.evlrStart, found));
    }
    if (at == data_.offset) {
      problem_ = "it has no chunk table, since its compressor was interrupted";
      return false;
    }
    return readTable(at, found);
  }

  /// Reads the table whose place lies in the eight bytes before `end`; these then belong to the table.
  bool readTableSaidAt(std::uint64_t end, LazChunks& found) {
    if (end > file_.size() || end < firstChunk_ + tableHead + sizeof(std::int64_t)) return false;
    if (!readTable(load<std::uint64_t>(&file_[end - sizeof(std::int64_t)]), found)) return false;
    if (found.end + sizeof(std::int64_t) == end) found.end = end;
    return true;
  }

  bool readTable(std::uint64_t at, LazChunks& found) {
    problem_ = "its chunk table is damaged";
    if (at < firstChunk_ || at > file_.size() - tableHead) return false;
    const auto count = load<std::uint32_t>(&file_[at + 4]);
    if (load<std::uint32_t>(&file_[at]) != 0) return false;
    if (count > (at - firstChunk_) / format_.smallestChunk()) return false;
    if (count == 0 && data_.points != 0) return false;
    if (count != 0 && data_.points == 0) {
      problem_ = "its header says that it has no points, but its chunk table tells of some";
      tellsOfPoints_ = true;
      return false;
    }
    found = {{}, true, at + tableHead};
    return count == 0 || readChunks(at, count, found);
  }

  bool readChunks(std::uint64_t table, std::uint32_t count, LazChunks& found) {
    StreamBytes stream;
    RangeDecoder coder;
    coder.start(stream, file_.subspan(table + tableHead));
    auto numbers = std::make_unique<TableCoder<RangeDecoder>>(format_.isVariable());
    LazChunk next{0, 0, firstChunk_, 0};
    for (std::uint32_t i = 0; i < count; ++i) {
      std::uint32_t bytes = 0;
      numbers->code(coder, next.points, bytes);
      if (!format_.isVariable()) next.points = pointsOfChunkAt(next.firstPoint);
      next.size = bytes;
      if (!coder.proceed() || coder.isBroken() || !isPossible(next, table)) return false;
      found.chunks.push_back(next);
      next.firstPoint += next.points;
      next.offset += next.size;
    }
    found.end += coder.consumed();
    // A gap before the table may be; but where a walk can tell, a table with one is more likely wrong.
    return next.firstPoint == data_.points && (next.offset == table || format_.isVariable());
  }

  std::uint32_t pointsOfChunkAt(std::uint64_t point) const {
    const std::uint64_t rest = data_.points - std::min(point, data_.points);
    return static_cast<std::uint32_t>(std::min<std::uint64_t>(rest, format_.chunkSize));
  }

  bool isPossible(const LazChunk& chunk, std::uint64_t end) const {
    return chunk.points > 0 && chunk.points <= data_.points - chunk.firstPoint &&
           chunk.size >= format_.smallestChunk() && chunk.size <= end - chunk.offset &&
           (chunk.points - 1) / mostPointsPerByte < chunk.size;
  }

  /// Goes from chunk to chunk, all of which have as many points.
  std::string walk(LazChunks& found) {
    found = {{}, false, firstChunk_};
    LazDecoder decoder(format_);
    LazChunk next{0, 0, firstChunk_, 0};
    while (next.firstPoint < data_.points) {
      next.points = pointsOfChunkAt(next.firstPoint);
      std::string damage = measure(decoder, next);
      if (damage.empty() && !isPossible(next, file_.size()))
        damage = "there are too few bytes for its points";
      if (!damage.empty())
        return problem_ + ", and in chunk " + std::to_string(found.chunks.size()) + ", at byte " +
               std::to_string(next.offset) + ", " + damage;
      found.chunks.push_back(next);
      next.firstPoint += next.points;
      next.offset += next.size;
      found.end = next.offset;
    }
    return {};
  }

  /// Finds how many bytes a chunk has. Gives what is wrong with it; empty if nothing is.
  std::string measure(LazDecoder& decoder, LazChunk& chunk) const {
    const auto bytes = file_.subspan(static_cast<std::size_t>(chunk.offset));
    if (!format_.isLayered()) return measureByDecoding(decoder, bytes, chunk);
    LayeredChunk head;
    if (!readLayeredChunk(format_, bytes, head)) return "the file ends too early";
    if (head.points != chunk.points)
      return "there are " + std::to_string(head.points) + " points, where " + std::to_string(chunk.points) +
             " are expected";
    chunk.size = head.size;
    return {};
  }

  std::string measureByDecoding(LazDecoder& decoder, std::span<const std::byte> bytes,
                                LazChunk& chunk) const {
    const std::vector<LazColumn> none(format_.parts.size());
    std::string damage;
    if (!decoder.begin(bytes, chunk.points, none, false, damage)) return damage;
    if (!decoder.next(chunk.points, none, damage)) return "the file ends too early";
    if (decoder.consumed() > bytes.size()) return "the file ends too early";
    chunk.size = decoder.consumed();
    return {};
  }

  const LazFormat& format_;
  std::span<const std::byte> file_;
  LazPointData data_;
  std::uint64_t firstChunk_;
  std::string problem_;        ///< Why there is no table that can be used.
  bool tellsOfPoints_ = false; ///< The table, though there are none.
};

} // namespace

bool findLazChunks(const LazFormat& format, std::span<const std::byte> file, const LazPointData& data,
                   const std::string& path, LazChunks& found, std::string& error) {
  const std::string problem = ChunkFinder(format, file, data).find(found);
  if (problem.empty()) return true;
  error = "The points of \"" + path + "\" can't be read: " + problem +
          ". Fetch the file again from where it came.";
  return false;
}

std::vector<std::byte> lazChunkTable(const LazFormat& format, std::span<const LazChunk> chunks) {
  std::vector<std::byte> table(tableHead);
  const auto hasPoints = [](const LazChunk& chunk) { return chunk.points != 0; };
  const auto count = static_cast<std::uint32_t>(std::ranges::count_if(chunks, hasPoints));
  store(&table[4], count);
  if (count == 0) return table;
  GrowingBytes bytes;
  RangeEncoder coder;
  coder.start(bytes);
  auto numbers = std::make_unique<TableCoder<RangeEncoder>>(format.isVariable());
  for (const LazChunk& chunk : chunks) {
    if (!hasPoints(chunk)) continue;
    std::uint32_t points = chunk.points;
    auto size = static_cast<std::uint32_t>(chunk.size);
    coder.proceed();
    numbers->code(coder, points, size);
  }
  const auto stream = coder.finish();
  table.insert(table.end(), stream.begin(), stream.end());
  return table;
}

} // namespace Zamt::Host
