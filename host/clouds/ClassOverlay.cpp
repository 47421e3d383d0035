#include "host/clouds/ClassOverlay.h"

namespace Zamt::Host {

std::uint8_t* ClassOverlay::place(std::size_t block) const {
  const std::size_t group = blocks_.groupOf(block);
  return groups_[group].get() + (blocks_.first(block) - blocks_.first(blocks_.firstOfGroup(group)));
}

std::span<std::uint8_t> ClassOverlay::change(std::size_t block) {
  const std::size_t group = blocks_.groupOf(block);
  if (!groups_[group]) {
    const std::uint64_t first = blocks_.first(blocks_.firstOfGroup(group));
    const std::size_t next = blocks_.firstOfGroup(group + 1);
    const std::uint64_t end = next == blocks_.size() ? blocks_.points() : blocks_.first(next);
    groups_[group] = std::make_unique_for_overwrite<std::uint8_t[]>(static_cast<std::size_t>(end - first));
  }
  changed_[block] = 1;
  return {place(block), blocks_.count(block)};
}

} // namespace Zamt::Host
