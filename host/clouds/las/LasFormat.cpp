#include "host/clouds/las/LasFormat.h"

#include "host/clouds/las/KeptPoints.h"
#include "host/clouds/las/LasCompatibility.h"
#include "host/clouds/las/LasWriter.h"

#include <cstring>
#include <utility>
#include <vector>

namespace Zamt::Host {

namespace {

class LasReader : public ColumnReader {
public:
  LasReader(const LasFile& file, const BlockTable& blocks) : file_(file), blocks_(blocks) {}

  bool read(std::size_t block, ColumnKey key, StoredColumn& column, std::string& /*problem*/) override {
    const LasLayout& layout = file_.layout;
    const LasField& place = layout.fields[key.field];
    const std::byte* const records =
        file_.bytes().data() + layout.pointOffset + blocks_.first(block) * layout.recordLength;
    if (key.field == layout.classField && layout.secondClassAt) {
      classes_ = compatibleClasses(records, blocks_.count(block), layout.recordLength, *layout.secondClassAt);
      column = {std::as_bytes(std::span(classes_)).data(), 1, FieldType::U8};
      return true;
    }
    column = {records + place.offset + key.component * sizeOf(place.type), layout.recordLength, place.type,
              place.shift, place.bits};
    return true;
  }

private:
  const LasFile& file_;
  const BlockTable& blocks_;
  std::vector<std::uint8_t> classes_; ///< Of points that say them in two places.
};

class LasRecordReader : public RecordReader {
public:
  LasRecordReader(const LasFile& file, const BlockTable& blocks) : file_(file), blocks_(blocks) {}

  bool read(std::size_t block, std::size_t from, std::span<std::byte> records,
            std::string& /*problem*/) override {
    const LasLayout& layout = file_.layout;
    const std::uint64_t start = layout.pointOffset + (blocks_.first(block) + from) * layout.recordLength;
    std::memcpy(records.data(), file_.bytes().data() + start, records.size());
    return true;
  }

private:
  const LasFile& file_;
  const BlockTable& blocks_;
};

class LasFormat : public CloudFormat, public LasSource {
public:
  explicit LasFormat(LasFile file) : file_(std::move(file)), about_(describe(file_.layout)) {
    about_.blocks = BlockTable::even(file_.layout.points);
  }

  const CloudDescription& description() const override { return about_; }

  std::unique_ptr<ColumnReader> makeReader() const override {
    return std::make_unique<LasReader>(file_, about_.blocks);
  }

  bool write(const ClassOverlay& changed, const std::vector<ClassName>& addedNames, const std::string& path,
             const Stop& stop, std::string& error) const override {
    return writeLas(file_, about_.blocks, changed, addedNames, path, stop, error);
  }

  bool extract(const PointMask& kept, const std::string& path, const Stop& stop,
               std::string& error) const override {
    const KeptPoints points(*this, kept);
    return writeAsLas(points, ClassOverlay(points.blocks()), {}, path, stop, error);
  }

  std::string_view ending() const override { return ".las"; }
  const LasSource* source() const override { return this; }

  const LasFile& file() const override { return file_; }
  const BlockTable& blocks() const override { return about_.blocks; }
  LasStretch pointData() const override {
    return {file_.layout.pointOffset,
            static_cast<std::size_t>(file_.layout.points) * file_.layout.recordLength};
  }
  /// A record that says that the points are not compressed.
  void removeOwnRecords(LasEdits& edits) const override {
    const LasRecord* const record = file_.layout.findRecord(compressionUserId, compressionId);
    if (!record || record->extended) return;
    edits.remove(record->head, record->data + record->length - record->head);
    edits.countVlrs(-1);
  }
  std::unique_ptr<RecordReader> makeRecordReader() const override {
    return std::make_unique<LasRecordReader>(file_, about_.blocks);
  }

private:
  LasFile file_;
  CloudDescription about_;
};

} // namespace

std::unique_ptr<const CloudFormat> openLas(std::unique_ptr<MappedFile> file, const std::string& path,
                                           std::string& error) {
  LasFile las{path, std::move(file), {}};
  if (!readLayout(las.bytes(), path, las.layout, error)) return nullptr;
  return std::make_unique<LasFormat>(std::move(las));
}

} // namespace Zamt::Host
