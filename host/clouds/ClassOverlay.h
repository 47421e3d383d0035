#pragma once

#include "host/clouds/BlockTable.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <vector>

namespace Zamt::Host {

/// The classes that were changed in memory: one byte for each point of the blocks that hold a changed one.
class ClassOverlay {
public:
  /// Nothing is changed. `blocks` must outlive the overlay.
  explicit ClassOverlay(const BlockTable& blocks)
      : blocks_(blocks), groups_(blocks.groups()), changed_(blocks.size(), 0) {}

  /// The classes of all points of a block as they are now; empty if none of them was changed.
  std::span<const std::uint8_t> of(std::size_t block) const {
    if (changed_[block] == 0) return {};
    return {place(block), blocks_.count(block)};
  }

  /// Room for the classes of all points of a block, which counts as changed from now on; the caller fills it.
  /// Blocks of different groups may be changed in parallel.
  std::span<std::uint8_t> change(std::size_t block);

private:
  std::uint8_t* place(std::size_t block) const;

  const BlockTable& blocks_;
  std::vector<std::unique_ptr<std::uint8_t[]>> groups_; ///< Null where none of a group's blocks was changed.
  std::vector<std::uint8_t> changed_;
};

} // namespace Zamt::Host
