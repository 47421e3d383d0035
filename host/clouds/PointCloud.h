#pragma once

#include "host/clouds/CloudFormat.h"
#include "host/clouds/PassMeter.h"

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace Zamt::Host {

class BlockReader;

/// The points of one file: columns over blocks, read by a BlockReader, with classes that can be changed in
/// memory. Nothing is written until `write` is called. Reading is safe from several threads at once.
class PointCloud {
public:
  /// A cloud over an open file; `path` is what sentences call it. `openCloud` makes one from a path alone.
  PointCloud(std::string path, std::unique_ptr<const CloudFormat> format);
  PointCloud(const PointCloud&) = delete;
  PointCloud& operator=(const PointCloud&) = delete;

  const std::string& path() const { return path_; }
  std::uint64_t size() const { return blocks().points(); }
  const BlockTable& blocks() const { return about_.blocks; }
  unsigned pointFormat() const { return about_.pointFormat; }   ///< 0 to 10.
  unsigned versionMinor() const { return about_.versionMinor; } ///< 0 to 4, of LAS 1.x.

  /// All fields, in the order of the file, X, Y and Z first. Names are unique.
  const std::vector<Field>& fields() const { return about_.fields; }
  /// The field of exactly this name, or null; it lives as long as the cloud.
  const Field* findField(std::string_view name) const;
  /// The field that holds the class; what is read from it are the classes as changed.
  const Field& classField() const { return about_.fields[about_.classField]; }

  /// How the points are compressed, if they are.
  std::optional<Compression> compression() const { return format_->compression(); }

  /// How formats call a component of a field of this cloud.
  ColumnKey keyOf(const Field& field, unsigned component = 0) const {
    return {static_cast<std::size_t>(&field - about_.fields.data()), component};
  }

  /// The highest class that the points can hold: 31 or 255.
  unsigned highestClass() const { return about_.highestClass; }
  /// The names that the file brings, in number order; may be none.
  const std::vector<ClassName>& classNames() const { return about_.classNames; }

  /// Puts the points `indices` of the block that `reader`, one of this cloud's, is at into a class, in
  /// memory. `number` is at most `highestClass()`. Blocks of different groups may be changed in parallel;
  /// nobody may read the block meanwhile. Nothing is changed when the block can't be read, which the reader
  /// then tells.
  void setClass(BlockReader& reader, std::span<const std::uint32_t> indices, std::uint8_t number);

  /// Writes the file with its classes as changed to `path`, as `writeCloud` does.
  bool write(const std::vector<ClassName>& addedNames, const std::string& path, const Stop& stop,
             std::string& error) const;

  /// Writes those of the file's points that the mask holds to `path`, as `extractCloud` does.
  bool extract(const PointMask& kept, const std::string& path, const Stop& stop, std::string& error) const;

  /// Counts the points of the cloud, in every pass over it anew.
  PassMeter& meter() const { return meter_; }

private:
  friend class BlockReader;

  /// The box of a block once it was worked out. Threads that come at the same time may all work it out; one
  /// of them keeps it.
  struct KeptBox {
    enum State : std::uint8_t { Unknown, BeingKept, Kept };
    std::atomic<std::uint8_t> state{Unknown};
    Bounds box;
  };

  const Bounds* knownBounds(std::size_t block) const;
  void keepBounds(std::size_t block, const Bounds& box) const;

  std::string path_;
  std::unique_ptr<const CloudFormat> format_;
  const CloudDescription& about_;
  ClassOverlay classes_;
  mutable std::vector<KeptBox> boxes_; ///< Empty where the file says them itself.
  mutable PassMeter meter_;
};

} // namespace Zamt::Host
