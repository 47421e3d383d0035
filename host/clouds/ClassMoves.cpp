#include "host/clouds/ClassMoves.h"

#include "host/clouds/forEachBlock.h"

#include <mutex>
#include <vector>

namespace Zamt::Host {

bool findClassMoves(const PointCloud& cloud, const Stop& stop, ClassMoves& moves, std::string& problem) {
  moves = {{}, PointMask(cloud.size())};
  std::mutex totals;
  const auto compare = [&](BlockReader& block) {
    if (!block.hasChangedClasses()) return;
    const Column before = block.storedClasses();
    const Column now = block.classes();
    std::vector<std::uint32_t> moved;
    std::map<std::pair<std::uint8_t, std::uint8_t>, std::uint64_t> points;
    for (std::uint32_t i = 0; i < block.size(); ++i) {
      if (before.byteAt(i) == now.byteAt(i)) continue;
      moved.push_back(i);
      ++points[{before.byteAt(i), now.byteAt(i)}];
    }
    moves.mask.add(block.first(), moved);
    const std::lock_guard lock(totals);
    for (const auto& [move, count] : points) moves.points[move] += count;
  };
  return forEachBlock(cloud, {}, stop, compare, problem);
}

} // namespace Zamt::Host
