#pragma once

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

enum class FieldType : std::uint8_t { U8, I8, U16, I16, U32, I32, U64, I64, F32, F64 };

/// One named field of the points, as it lies in a point record.
struct Field {
  std::string name;        ///< As the point-cloud world calls it, or as the file names its extra bytes.
  std::string description; ///< What the file says of it; may be empty.
  FieldType type = FieldType::U8;
  unsigned components = 1;               ///< 1, 2 or 3 values a point, one behind the other.
  std::size_t offset = 0;                ///< Bytes from the start of the point record to the first component.
  unsigned shift = 0;                    ///< For values packed into bits: the lowest bit,
  unsigned bits = 0;                     ///< and how many; 0 for a value that has its bytes to itself.
  std::array<double, 3> scale{1, 1, 1};  ///< value = stored * scale + origin, for each component.
  std::array<double, 3> origin{0, 0, 0}; ///< Likewise.
  std::array<std::optional<double>, 3> noData; ///< The stored number that means "no value here".
};

/// An axis-aligned box, both ends inclusive; the empty box has its ends the wrong way round.
struct Bounds {
  std::array<double, 3> low{1, 1, 1};
  std::array<double, 3> high{0, 0, 0};
  bool empty() const { return low[0] > high[0]; }
};

/// The name of one class, as a file's lookup record gives it.
struct ClassName {
  std::uint8_t number = 0;
  std::string name;
};

/// The points of one LAS file, memory-mapped and read where they lie. Only what is asked for is touched.
/// Classes can be changed in memory; nothing is written until `writeCloud` is called. Reading is safe from
/// several threads at once; classes of different blocks may be changed in parallel.
class PointCloud {
public:
  /// Maps the file at `path`. Null when it can't be used, with a sentence in `error` that says why and what
  /// to do.
  static std::shared_ptr<PointCloud> open(const std::string& path, std::string& error);

  ~PointCloud();
  PointCloud(const PointCloud&) = delete;
  PointCloud& operator=(const PointCloud&) = delete;

  const std::string& path() const;
  std::uint64_t size() const;
  unsigned pointFormat() const;  ///< 0 to 10.
  unsigned versionMinor() const; ///< 0 to 4, of LAS 1.x.

  /// All fields, in the order of the record. Names are unique.
  const std::vector<Field>& fields() const;
  /// The field of exactly this name, or null; it lives as long as the cloud.
  const Field* findField(std::string_view name) const;

  /// Reads one component of the points `first + indices[i]` into `out[i]`, as doubles, scale and origin
  /// applied; NaN where the file says that there is no value. `component` is below `field.components` and
  /// `out` as long as `indices`. The field "Classification" gives the classes as changed by `setClass`.
  void gather(const Field& field, unsigned component, std::uint64_t first,
              std::span<const std::uint32_t> indices, std::span<double> out) const;

  /// The coordinates of one point, in world units.
  std::array<double, 3> position(std::uint64_t point) const;

  /// The stored whole numbers of a point's coordinates: world = stored * scale + origin of the fields X, Y,
  /// Z.
  std::array<std::int32_t, 3> storedPosition(std::uint64_t point) const;

  /// The box around the points of the block that starts at `first`, worked out once and kept.
  Bounds blockBounds(std::uint64_t first) const;

  /// The highest class that the point format can hold: 31 or 255.
  unsigned highestClass() const;

  std::uint8_t classOf(std::uint64_t point) const;

  /// Puts a point into a class, in memory; the format's flag bits beside it stay. `number` is at most
  /// `highestClass()`.
  void setClass(std::uint64_t point, std::uint8_t number);

  /// How many points there are of each class, as changed.
  std::array<std::uint64_t, 256> countClasses() const;

  /// The names of the file's classification lookup record, in number order; empty if it has none.
  const std::vector<ClassName>& classNames() const;

  /// The cloud's inner parts; known to the code that reads and writes the file, see CloudAccess.h.
  struct State;
  const State& inner() const { return *state; }

private:
  explicit PointCloud(std::unique_ptr<State> state);
  std::unique_ptr<State> state;
};

} // namespace Zamt::Host
