#include "host/clouds/laz/LazWriter.h"

#include "files/AtomicFile.h"
#include "host/clouds/las/LasEdits.h"
#include "host/clouds/las/classNameRecord.h"
#include "host/clouds/laz/LazChunkWriter.h"
#include "host/clouds/laz/LazClassEncoder.h"
#include "host/clouds/laz/LazDecoder.h"
#include "host/clouds/laz/LazEncoder.h"

#include <algorithm>
#include <cstring>
#include <oneapi/tbb/enumerable_thread_specific.h>

namespace Zamt::Host {

namespace {

/// The chunks of a LAZ file with classes as changed.
class ChangedChunks : public LazChunkMaker {
public:
  ChangedChunks(const LazFile& input, const ClassOverlay& changed)
      : input_(input), changed_(changed), locals_([&input] {
          return Local{LazClassEncoder(input.coding, input.layout.secondClassAt), {}};
        }) {}

  std::span<const std::byte> original(std::size_t chunk) const override {
    return changed_.of(chunk).empty() ? input_.chunk(chunk) : std::span<const std::byte>();
  }

  bool make(std::size_t chunk, std::vector<std::byte>& bytes, std::string& problem) override {
    std::string damage;
    Local& local = locals_.local();
    const std::span<const std::uint8_t> classes = changed_.of(chunk);
    local.contexts.resize(classes.size());
    if (!input_.contexts || !input_.contexts->read(chunk, local.contexts)) local.contexts.clear();
    if (local.encoder.encode(input_.chunk(chunk), classes, local.contexts, bytes, damage)) return true;
    problem = chunkDamaged(input_.path, chunk, input_.chunks.chunks[chunk].offset, damage);
    return false;
  }

private:
  struct Local {
    LazClassEncoder encoder;
    std::vector<std::uint8_t> contexts;
  };

  const LazFile& input_;
  const ClassOverlay& changed_;
  tbb::enumerable_thread_specific<Local> locals_;
};

/// The points of a source, cut into chunks; one without points has no bytes.
class NewChunks : public LazChunkMaker {
public:
  NewChunks(const LasSource& source, const ClassOverlay& changed, const LazFormat& format,
            const std::vector<LazChunk>& chunks)
      : source_(source), changed_(changed), chunks_(chunks), locals_([&source, &format] {
          return Local{source.makeRecordReader(), LazEncoder(format), {}};
        }) {}

  std::span<const std::byte> original(std::size_t /*chunk*/) const override { return {}; }

  bool make(std::size_t chunk, std::vector<std::byte>& bytes, std::string& problem) override {
    if (chunks_[chunk].points == 0) return true;
    Local& local = locals_.local();
    const std::size_t length = source_.file().layout.recordLength;
    local.records.resize(chunks_[chunk].points * length);
    const BlockTable& blocks = source_.blocks();
    std::uint64_t point = chunks_[chunk].firstPoint;
    for (auto rest = std::span(local.records); !rest.empty();) {
      const std::size_t block = blocks.holding(point);
      const auto from = static_cast<std::size_t>(point - blocks.first(block));
      const auto some = rest.first(std::min(rest.size(), (blocks.count(block) - from) * length));
      if (!readChanged(source_, changed_, *local.reader, block, from, some, problem)) return false;
      point += some.size() / length;
      rest = rest.subspan(some.size());
    }
    local.encoder.add(local.records);
    local.encoder.finish(bytes);
    return true;
  }

private:
  struct Local {
    std::unique_ptr<RecordReader> reader;
    LazEncoder encoder;
    std::vector<std::byte> records;
  };

  const LasSource& source_;
  const ClassOverlay& changed_;
  const std::vector<LazChunk>& chunks_;
  tbb::enumerable_thread_specific<Local> locals_;
};

bool isAnyChanged(const LazFile& input, const ClassOverlay& changed) {
  for (std::size_t chunk = 0; chunk < input.chunks.chunks.size(); ++chunk)
    if (!changed.of(chunk).empty()) return true;
  return false;
}

/// Moves what the LAZ record says of records that the header does not count.
void moveSpecialRecords(const LazFile& input, LasEdits& edits) {
  if (input.coding.specialRecords < 0) return;
  const auto place = static_cast<std::uint64_t>(input.coding.specialRecords);
  const std::size_t at = input.layout.records[input.lazRecord].data + lazSpecialRecordsAt;
  const bool isKept = place <= input.bytes().size() && edits.isKept(place);
  replaceNumber(edits, at, isKept ? static_cast<std::int64_t>(edits.moved(place)) : std::int64_t{-1});
}

/// Writes everything in front of the points and behind them.
bool writeFrame(const LazFile& input, const std::vector<LazChunk>& written, LasEdits& edits, AtomicFile& file,
                std::string& error) {
  input.uncountLostRecords(edits);
  if (!moveHeaderPlaces(input.bytes(), input.layout, input.path, edits, error)) return false;
  moveSpecialRecords(input, edits);
  if (input.copc) moveCopcPlaces(input, *input.copc, written, edits);
  return edits.writeTo(input.bytes(), file, error);
}

/// The chunks of blocks, one for each.
std::vector<LazChunk> chunksOf(const BlockTable& blocks) {
  std::vector<LazChunk> chunks;
  for (std::size_t block = 0; block < blocks.size(); ++block)
    chunks.push_back({blocks.first(block), static_cast<std::uint32_t>(blocks.count(block)), 0, 0});
  return chunks;
}

std::vector<LazChunk> evenChunks(std::uint64_t points, std::uint32_t chunkSize) {
  std::vector<LazChunk> chunks;
  for (std::uint64_t first = 0; first < points; first += chunkSize)
    chunks.push_back(
        {first, static_cast<std::uint32_t>(std::min<std::uint64_t>(chunkSize, points - first)), 0, 0});
  return chunks;
}

/// The LAZ record with its head.
std::vector<std::byte> newLazRecord(const LazFormat& format) {
  const std::vector<std::byte> data = lazRecordOf(format);
  std::vector<std::byte> record(vlrHead + data.size());
  std::memcpy(record.data() + 2, lazUserId, std::strlen(lazUserId));
  writeAt(record.data() + recordIdAt, lazRecordId);
  writeAt(record.data() + recordLengthAt, static_cast<std::uint16_t>(data.size()));
  std::memcpy(record.data() + vlrHead, data.data(), data.size());
  return record;
}

} // namespace

bool writeLaz(const LazFile& input, const ClassOverlay& changed, const std::vector<ClassName>& addedNames,
              const std::string& path, const Stop& stop, std::string& error) {
  LasEdits edits;
  if (!enterClassNames(input, addedNames, edits, error)) return false;
  const auto file = AtomicFile::create(path, error, &stop);
  if (!file) return false;
  if (addedNames.empty() && !isAnyChanged(input, changed))
    return edits.writeTo(input.bytes(), *file, error) && file->commit(error);
  const std::uint64_t start = edits.movedPoints(input.layout.pointOffset);
  ChangedChunks maker(input, changed);
  std::vector<LazChunk> chunks = input.chunks.chunks;
  std::uint64_t end = 0;
  if (!writeLazChunks(input.coding, maker, start, *file, chunks, end, error)) return false;
  edits.replacePoints(input.layout.pointOffset, input.keptFrom(), end - start);
  return writeFrame(input, chunks, edits, *file, error) && file->commit(error);
}

bool writeKeptNodes(const LazFile& input, const KeptPoints& kept, const std::string& path, const Stop& stop,
                    std::string& error) {
  LasEdits edits;
  const auto file = AtomicFile::create(path, error, &stop);
  if (!file) return false;
  const std::uint64_t start = input.layout.pointOffset;
  const ClassOverlay unchanged(kept.blocks());
  std::vector<LazChunk> chunks = chunksOf(kept.blocks());
  NewChunks maker(kept, unchanged, input.coding, chunks);
  std::uint64_t end = 0;
  if (!writeLazChunks(input.coding, maker, start, *file, chunks, end, error)) return false;
  edits.replacePoints(input.layout.pointOffset, input.keptFrom(), end - start);
  kept.describePoints(edits);
  setCopcTimes(input, *input.copc, kept.summary().times(), edits);
  return writeFrame(input, chunks, edits, *file, error) && file->commit(error);
}

bool writeAsLaz(const LasSource& source, const ClassOverlay& changed,
                const std::vector<ClassName>& addedNames, const std::string& path, const Stop& stop,
                std::string& error) {
  const LasFile& input = source.file();
  const LasLayout& layout = input.layout;
  LasEdits edits;
  if (!enterClassNames(input, addedNames, edits, error)) return false;
  const LazFormat format = newLazFormat(layout.pointFormat, layout.recordLength);
  edits.insert(layout.vlrEnd, newLazRecord(format));
  edits.countVlrs(1);
  constexpr unsigned compressed = 0x80;
  replaceNumber(edits, HeaderAt::pointFormat, static_cast<std::uint8_t>(layout.pointFormat | compressed));
  source.removeOwnRecords(edits);
  const auto file = AtomicFile::create(path, error, &stop);
  if (!file) return false;
  const std::uint64_t start = edits.movedPoints(layout.pointOffset);
  std::vector<LazChunk> chunks = evenChunks(source.blocks().points(), format.chunkSize);
  NewChunks maker(source, changed, format, chunks);
  std::uint64_t end = 0;
  if (!writeLazChunks(format, maker, start, *file, chunks, end, error)) return false;
  const LasStretch old = source.pointData();
  edits.replacePoints(old.from, old.from + old.size, end - start);
  source.describePoints(edits);
  return moveHeaderPlaces(input.bytes(), layout, input.path, edits, error) &&
         edits.writeTo(input.bytes(), *file, error) && file->commit(error);
}

} // namespace Zamt::Host
