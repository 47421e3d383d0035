#include "host/clouds/BlockTable.h"

#include <utility>

namespace Zamt::Host {

BlockTable::BlockTable(std::vector<std::uint64_t> starts) : starts_(std::move(starts)), groups_{0} {
  for (std::size_t block = 1; block < size(); ++block)
    if (starts_[block] - starts_[groups_.back()] >= blockPoints) groups_.push_back(block);
  if (size() > 0) groups_.push_back(size());
}

BlockTable BlockTable::even(std::uint64_t points) {
  std::vector<std::uint64_t> starts;
  starts.reserve(static_cast<std::size_t>(points / blockPoints) + 2);
  for (std::uint64_t first = 0; first < points; first += blockPoints) starts.push_back(first);
  starts.push_back(points);
  return BlockTable(std::move(starts));
}

} // namespace Zamt::Host
