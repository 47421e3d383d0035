#pragma once

#include "host/clouds/PointCloud.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <vector>

namespace Zamt::Host {

/// Reads a cloud block by block for one thread. A column is obtained when it is first asked for and kept
/// while the reader stays at its block, so that all who work on the block share it.
///
/// A block that can't be read does not stop who works on it: from then on all columns give NaN, and who
/// drives the reader finds out by `failed`.
class BlockReader {
public:
  /// `cloud` must outlive the reader. `expected` are the columns that are likely to be asked for of every
  /// block.
  explicit BlockReader(const PointCloud& cloud, std::span<const ColumnKey> expected = {});

  /// Goes to a block of the cloud, which may be the same; columns of the one before are no longer to be used.
  void moveTo(std::size_t block);

  const PointCloud& cloud() const { return cloud_; }
  std::size_t block() const { return block_; }
  std::uint64_t first() const { return cloud_.blocks().first(block_); } ///< The block's first point.
  std::size_t size() const { return cloud_.blocks().count(block_); }    ///< How many points it has.

  /// One component of a field of the cloud.
  Column column(const Field& field, unsigned component = 0);
  Column axis(std::size_t axis) { return column(cloud_.fields()[axis]); } ///< 0 to 2 for X, Y, Z.
  Column classes() { return column(cloud_.classField()); }                ///< As changed in memory.

  /// Whether a class of the block was changed in memory; if so, `storedClasses` are those of the file. They
  /// are to be asked for once while the reader stays at the block, and only then.
  bool hasChangedClasses() const { return !cloud_.classes_.of(block_).empty(); }
  Column storedClasses();

  /// The box around the block's points, in world units, worked out once for a cloud and kept.
  Bounds bounds();

  bool failed() const { return !problem_.empty(); }
  /// Why a block could not be read, in a sentence; empty while all could.
  const std::string& problem() const { return problem_; }

private:
  StoredColumn obtain(ColumnKey key);
  StoredColumn obtainStored(ColumnKey key);
  Bounds measure();

  /// A column is that of the block if it was obtained at the present stay.
  struct KeptColumn {
    std::uint64_t stay = 0;
    StoredColumn column;
  };

  const PointCloud& cloud_;
  std::unique_ptr<ColumnReader> reader_;
  std::size_t block_ = 0;
  std::uint64_t stay_ = 1;
  std::vector<KeptColumn> kept_; ///< For three components of each field.
  std::string problem_;
};

} // namespace Zamt::Host
