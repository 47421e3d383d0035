#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace Zamt::Host {

/// Points are worked on in stretches of about this many, so that their columns stay in the processor's cache.
/// A format that may cut its points as it likes makes its blocks this long.
inline constexpr std::uint32_t blockPoints = 32768;

/// How the points of a cloud are cut into blocks, the stretches that are read at once. Blocks follow one
/// another in the order of the points and may be of any length, none at all included.
class BlockTable {
public:
  BlockTable() : BlockTable(std::vector<std::uint64_t>{0}) {}

  /// `starts` holds the first point of each block, ascending from 0, and behind the last block the number of
  /// all points. A block has less than 2^32 points.
  explicit BlockTable(std::vector<std::uint64_t> starts);

  /// Blocks of `blockPoints`, the last one shorter.
  static BlockTable even(std::uint64_t points);

  std::uint64_t points() const { return starts_.back(); }
  std::size_t size() const { return starts_.size() - 1; }
  std::uint64_t first(std::size_t block) const { return starts_[block]; }
  std::size_t count(std::size_t block) const {
    return static_cast<std::size_t>(starts_[block + 1] - starts_[block]);
  }

  /// The block with the point of that number, which is less than `points()`.
  std::size_t holding(std::uint64_t point) const {
    return static_cast<std::size_t>(std::upper_bound(starts_.begin(), starts_.end(), point) -
                                    starts_.begin()) -
           1;
  }

  /// Short blocks are put together in groups, each of which is worth a task of its own: a file may hold
  /// millions of blocks of one point.
  std::size_t groups() const { return groups_.size() - 1; }
  std::size_t firstOfGroup(std::size_t group) const {
    return groups_[group];
  } ///< The one of `groups()` is
    ///< behind the last block.
  std::size_t groupOf(std::size_t block) const {
    return static_cast<std::size_t>(std::upper_bound(groups_.begin(), groups_.end(), block) -
                                    groups_.begin()) -
           1;
  }

private:
  std::vector<std::uint64_t> starts_;
  std::vector<std::size_t> groups_; ///< The first block of each, and behind the last the number of blocks.
};

} // namespace Zamt::Host
