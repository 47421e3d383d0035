#include "host/clouds/laz/openLaz.h"

#include "host/clouds/las/KeptPoints.h"
#include "host/clouds/las/LasSource.h"
#include "host/clouds/laz/LazDecoder.h"
#include "host/clouds/laz/LazReader.h"
#include "host/clouds/laz/LazWriter.h"

#include <utility>

namespace Zamt::Host {

namespace {

class LazRecordReader : public RecordReader {
public:
  explicit LazRecordReader(const LazFile& file) : file_(file), decoder_(file.coding) {}

  bool read(std::size_t block, std::size_t from, std::span<std::byte> records,
            std::string& problem) override {
    const LazChunk& chunk = file_.chunks.chunks[block];
    std::string damage;
    if (goTo(block, from, damage) && next(records, damage) &&
        (next_ < chunk.points || decoder_.finish(damage)))
      return true;
    block_ = none;
    problem = chunkDamaged(file_.path, block, chunk.offset, damage);
    return false;
  }

private:
  static constexpr std::size_t none = ~std::size_t{0};

  bool goTo(std::size_t block, std::size_t from, std::string& damage) {
    if (block == block_ && from == next_ && from != 0) return true;
    block_ = block;
    next_ = 0;
    skipped_.resize(std::min<std::size_t>(from, blockPoints) * file_.coding.recordLength);
    std::byte place{};
    const auto columns = recordColumns(file_.coding, &place);
    if (!decoder_.begin(file_.chunk(block), file_.chunks.chunks[block].points, columns, false, damage))
      return false;
    while (next_ < from) {
      const std::size_t count = std::min<std::size_t>(from - next_, blockPoints);
      if (!next(std::span(skipped_).first(count * file_.coding.recordLength), damage)) return false;
    }
    return true;
  }

  bool next(std::span<std::byte> records, std::string& damage) {
    const std::size_t count = records.size() / file_.coding.recordLength;
    next_ += count;
    return decoder_.next(count, recordColumns(file_.coding, records.data()), damage);
  }

  const LazFile& file_;
  LazDecoder decoder_;
  std::size_t block_ = none;
  std::size_t next_ = 0; ///< The point of the block that the decoder is at.
  std::vector<std::byte> skipped_;
};

class LazCloud : public CloudFormat, public LasSource {
public:
  explicit LazCloud(LazFile file) : file_(std::move(file)), about_(describe(file_.layout)) {
    std::vector<std::uint64_t> starts{0};
    for (const LazChunk& chunk : file_.chunks.chunks) starts.push_back(chunk.firstPoint + chunk.points);
    about_.blocks = BlockTable(std::move(starts));
    if (!file_.copc) return;
    for (const CopcNode& node : file_.copc->nodes)
      about_.boxes.push_back(file_.copc->boxOf(node, file_.layout));
  }

  const CloudDescription& description() const override { return about_; }

  std::unique_ptr<ColumnReader> makeReader() const override { return makeLazReader(file_); }

  bool write(const ClassOverlay& changed, const std::vector<ClassName>& addedNames, const std::string& path,
             const Stop& stop, std::string& error) const override {
    return writeLaz(file_, changed, addedNames, path, stop, error);
  }

  bool extract(const PointMask& kept, const std::string& path, const Stop& stop,
               std::string& error) const override {
    const KeptPoints points(*this, kept);
    return file_.copc ? writeKeptNodes(file_, points, path, stop, error)
                      : writeAsLaz(points, ClassOverlay(points.blocks()), {}, path, stop, error);
  }

  std::string_view ending() const override { return file_.copc ? ".copc.laz" : ".laz"; }
  std::optional<Compression> compression() const override { return file_.compression(); }
  const LasSource* source() const override { return this; }

  const LasFile& file() const override { return file_; }
  const BlockTable& blocks() const override { return about_.blocks; }
  LasStretch pointData() const override {
    return {file_.layout.pointOffset, file_.keptFrom() - file_.layout.pointOffset};
  }
  std::unique_ptr<RecordReader> makeRecordReader() const override {
    return std::make_unique<LazRecordReader>(file_);
  }

  /// The LAZ record, and of COPC what tells of its chunks.
  void removeOwnRecords(LasEdits& edits) const override {
    const auto remove = [&](std::size_t number) {
      const LasRecord& record = file_.layout.records[number];
      edits.remove(record.head, record.data + record.length - record.head);
      if (!record.extended) edits.countVlrs(-1);
    };
    remove(file_.lazRecord);
    file_.uncountLostRecords(edits);
    if (!file_.copc) return;
    remove(file_.copc->info);
    remove(file_.copc->hierarchy);
    const auto evlrs = readAt<std::uint32_t>(&file_.bytes()[HeaderAt::evlrCount]);
    replaceNumber(edits, HeaderAt::evlrCount, evlrs - 1);
  }

private:
  LazFile file_;
  CloudDescription about_;
};

/// Finds the chunks once the frame is read.
bool readChunks(LazFile& file, std::string& error) {
  const LasLayout& layout = file.layout;
  const LasRecord* const record = layout.findRecord(compressionUserId, compressionId);
  if (!record || record->extended) {
    error = "\"" + file.path +
            "\" is compressed but has no LAZ record, so that its points can't be read. Convert it with the "
            "program that wrote it, or fetch it again.";
    return false;
  }
  if (layout.pointOffset < layout.headerSize) {
    error = headerDamaged(file.path, "its points can't start within it");
    return false;
  }
  file.lazRecord = static_cast<std::size_t>(record - layout.records.data());
  LazPointData data{layout.pointOffset, layout.points, 0};
  for (const LasRecord& each : layout.records)
    if (each.extended && data.evlrStart == 0) data.evlrStart = each.head;
  return readLazFormat(file.bytes().subspan(record->data, record->length), layout.pointFormat,
                       layout.recordLength, file.path, file.coding, error) &&
         findLazChunks(file.coding, file.bytes(), data, file.path, file.chunks, error);
}

} // namespace

std::unique_ptr<const CloudFormat> openLaz(std::unique_ptr<MappedFile> file, const std::string& path,
                                           std::string& error) {
  LazFile laz;
  laz.path = path;
  laz.file = std::move(file);
  if (!readFrame(laz.bytes(), path, laz.layout, error) || !readChunks(laz, error)) return nullptr;
  readFields(laz.bytes(), laz.chunks.end, laz.layout);
  if (isCopc(laz.layout)) {
    if (!laz.chunks.fromTable) {
      error = "The chunk table of \"" + path +
              "\" is damaged, which COPC can't do without. Fetch the file again from where it came.";
      return nullptr;
    }
    CopcIndex index;
    if (!readCopcIndex(laz, laz.chunks.chunks, index, error)) return nullptr;
    laz.copc = std::move(index);
  }
  if (laz.coding.isLayered()) laz.contexts = std::make_unique<ClassContexts>(laz.chunks.chunks.size());
  return std::make_unique<LazCloud>(std::move(laz));
}

} // namespace Zamt::Host
