#pragma once

#include "files/Stop.h"
#include "host/clouds/BlockTable.h"
#include "host/clouds/Bounds.h"
#include "host/clouds/ClassName.h"
#include "host/clouds/ClassOverlay.h"
#include "host/clouds/Column.h"
#include "host/clouds/Field.h"
#include "host/clouds/PointMask.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace Zamt::Host {

class LasSource;

/// What a file says of its points. Never changes once the file is open.
struct CloudDescription {
  unsigned versionMinor = 0;         ///< 0 to 4, of LAS 1.x.
  unsigned pointFormat = 0;          ///< 0 to 10, which of the ASPRS's formats the points follow.
  std::vector<Field> fields;         ///< X, Y and Z come first. Names are unique.
  std::size_t classField = 0;        ///< The place in `fields` of the one that holds the class, in a byte.
  unsigned highestClass = 0;         ///< That a point can hold: 31 or 255.
  std::vector<ClassName> classNames; ///< Those the file brings, in number order.
  BlockTable blocks;
  std::vector<Bounds> boxes; ///< Of each block, where the file says so and can be trusted; else empty.
};

/// How the points of a file are compressed.
struct Compression {
  struct Layer {
    std::string name;
    std::uint64_t bytes = 0;
  };
  std::string compressor;
  std::uint64_t chunks = 0;
  std::uint64_t bytes = 0; ///< Of all chunks.
  std::vector<Layer>
      layers; ///< What these are made of, in the order of the file; none if they are of one piece.
};

/// One component of a field, by its place among the fields.
struct ColumnKey {
  std::size_t field = 0;
  unsigned component = 0;
};

/// The columns of X, Y and Z.
inline constexpr std::array<ColumnKey, 3> axisColumns{{{0, 0}, {1, 0}, {2, 0}}};

/// Says for one thread where the columns of blocks lie, decoding them if need be.
class ColumnReader {
public:
  virtual ~ColumnReader() = default;

  /// Tells which columns are likely to be asked for of every block, for readers that had better decode them
  /// together. Not all of them may be asked for, and others may be as well.
  virtual void expect(std::span<const ColumnKey> /*columns*/) {}

  /// Sets `column` to where a component of a field, as the file has it, lies for all points of a block. The
  /// memory stays as it is until another block is asked for, or the reader ends. Within one stay at a block a
  /// column is asked for once, and the columns in any order. False, with a sentence in `problem` that names
  /// the file, when the block is damaged.
  virtual bool read(std::size_t block, ColumnKey key, StoredColumn& column, std::string& problem) = 0;
};

/// A cloud in a file of one format: all that is known of a format outside of its own folder. Safe to use from
/// several threads at once.
class CloudFormat {
public:
  virtual ~CloudFormat() = default;

  virtual const CloudDescription& description() const = 0;

  /// A reader for one thread. Its memory is in proportion to the longest block; the format outlives it.
  virtual std::unique_ptr<ColumnReader> makeReader() const = 0;

  /// Writes the file to `path`, which may be its own, as it is but for the classes of the blocks in `changed`
  /// and for `addedNames`; a name for a number that has one replaces it. The file at `path` is replaced as a
  /// whole or, when false comes with a sentence in `error`, not at all.
  virtual bool write(const ClassOverlay& changed, const std::vector<ClassName>& addedNames,
                     const std::string& path, const Stop& stop, std::string& error) const = 0;

  /// Writes a file of the format with those of the points, as this file has them, that the mask holds, in
  /// their order, and with all else that the file has. The file at `path`, which may be its own, is replaced
  /// as a whole or, when false comes with a sentence in `error`, not at all. A format may be unable to.
  virtual bool extract(const PointMask& /*kept*/, const std::string& path, const Stop& /*stop*/,
                       std::string& error) const {
    error = "Points of a cloud in this format can't be written to \"" + path +
            "\" by themselves. Convert the cloud to LAS first.";
    return false;
  }

  /// How names of files of this format end, beginning with a point; empty if that is of no matter.
  virtual std::string_view ending() const { return {}; }

  /// How the points are compressed, if they are. Looks at every chunk.
  virtual std::optional<Compression> compression() const { return {}; }

  /// What writers of other formats need of a file that is laid out as LAS; null for any other.
  virtual const LasSource* source() const { return nullptr; }
};

} // namespace Zamt::Host
