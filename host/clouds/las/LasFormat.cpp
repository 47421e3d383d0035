#include "host/clouds/las/LasFormat.h"

#include "host/clouds/las/LasWriter.h"
#include "host/clouds/las/extractLas.h"

#include <algorithm>
#include <utility>

namespace Zamt::Host {

namespace {

class LasReader : public ColumnReader {
public:
  LasReader(const LasFile& file, const BlockTable& blocks) : file_(file), blocks_(blocks) {}

  bool read(std::size_t block, ColumnKey key, StoredColumn& column, std::string& /*problem*/) override {
    const LasField& place = file_.layout.fields[key.field];
    const std::byte* const record = file_.record(blocks_.first(block));
    column = {record + place.offset + key.component * sizeOf(place.type), file_.layout.recordLength,
              place.type, place.shift, place.bits};
    return true;
  }

private:
  const LasFile& file_;
  const BlockTable& blocks_;
};

class LasFormat : public CloudFormat {
public:
  explicit LasFormat(LasFile file) : file_(std::move(file)) {
    const LasLayout& layout = file_.layout;
    about_.versionMinor = layout.versionMinor;
    about_.pointFormat = layout.pointFormat;
    about_.fields.assign(layout.fields.begin(), layout.fields.end());
    about_.classField = layout.classField;
    about_.highestClass = layout.classMask;
    about_.classNames = layout.classNames;
    about_.blocks = BlockTable::even(layout.points);
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
    return extractLas(file_, about_.blocks, kept, path, stop, error);
  }

private:
  LasFile file_;
  CloudDescription about_;
};

} // namespace

std::unique_ptr<const CloudFormat> openLas(std::unique_ptr<MappedFile> file, const std::string& path,
                                           std::string& error) {
  LasFile las{path, std::move(file), {}};
  if (!readLayout(las.file->bytes(), path, las.layout, error)) return nullptr;
  return std::make_unique<LasFormat>(std::move(las));
}

} // namespace Zamt::Host
