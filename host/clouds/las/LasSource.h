#pragma once

#include "host/clouds/las/LasEdits.h"
#include "host/clouds/las/LasFile.h"

#include <cstddef>
#include <memory>
#include <span>
#include <string>

namespace Zamt::Host {

/// Gives one thread whole point records as they are in LAS.
class RecordReader {
public:
  virtual ~RecordReader() = default;

  /// Fills `records` with those of a block from its point `from` on. To begin at 0, or where the records read
  /// before ended, is cheap; anything else may take decoding those in front of it. False, with a sentence in
  /// `problem` that names the file, when the block is damaged; that may show only with the last record of
  /// it.
  virtual bool read(std::size_t block, std::size_t from, std::span<std::byte> records,
                    std::string& problem) = 0;
};

/// Points with the file that they are in, LAS or of a format based on it, as writers of all of them need it.
class LasSource {
public:
  virtual ~LasSource() = default;

  virtual const LasFile& file() const = 0;
  virtual const BlockTable& blocks() const = 0;

  /// The bytes that store the points.
  virtual LasStretch pointData() const = 0;

  /// Leaves out the records that mean something only to the points as they are stored here.
  virtual void removeOwnRecords(LasEdits& edits) const = 0;

  virtual std::unique_ptr<RecordReader> makeRecordReader() const = 0;

  /// Has the header say of the points what it does not yet, once all of them were read.
  virtual void describePoints(LasEdits& /*edits*/) const {}
};

/// Gives records that lie one after the other other classes, one each.
void setClasses(const LasLayout& layout, std::span<std::byte> records, std::span<const std::uint8_t> classes);

/// Reads records, as `RecordReader` does, with their classes as changed.
bool readChanged(const LasSource& source, const ClassOverlay& changed, RecordReader& reader,
                 std::size_t block, std::size_t from, std::span<std::byte> records, std::string& problem);

} // namespace Zamt::Host
