#include "host/clouds/forEachBlock.h"

#include <atomic>
#include <mutex>
#include <oneapi/tbb/enumerable_thread_specific.h>
#include <oneapi/tbb/parallel_for.h>

namespace Zamt::Host {

namespace {

/// False, with `problem` set, when the block can't be read.
bool visitBlock(std::size_t block, BlockReader& reader, const BlockVisit& visit, std::string& problem) {
  if (reader.cloud().blocks().count(block) == 0) return true;
  reader.moveTo(block);
  visit(reader);
  if (reader.failed()) problem = reader.problem();
  return !reader.failed();
}

std::uint64_t pointsBefore(const BlockTable& blocks, std::size_t block) {
  return block < blocks.size() ? blocks.first(block) : blocks.points();
}

bool endedWell(const Stop& stop, std::string& problem) {
  if (stop.requested()) problem = stoppedMessage;
  return !stop.requested();
}

} // namespace

bool forEachBlock(const PointCloud& cloud, std::span<const ColumnKey> expected, const Stop& stop,
                  const BlockVisit& visit, std::string& problem) {
  const BlockTable& blocks = cloud.blocks();
  std::atomic<bool> failed{false};
  std::mutex firstProblem;
  tbb::enumerable_thread_specific<BlockReader> readers([&] { return BlockReader(cloud, expected); });
  tbb::parallel_for(std::size_t{0}, blocks.groups(), [&](std::size_t group) {
    BlockReader& reader = readers.local();
    const std::size_t end = blocks.firstOfGroup(group + 1);
    for (std::size_t block = blocks.firstOfGroup(group); block < end; ++block) {
      if (failed || stop.requested()) return;
      std::string why;
      if (visitBlock(block, reader, visit, why)) continue;
      const std::lock_guard lock(firstProblem);
      if (!failed.exchange(true)) problem = why;
    }
    cloud.meter().add(pointsBefore(blocks, end) - blocks.first(blocks.firstOfGroup(group)));
  });
  return !failed && endedWell(stop, problem);
}

bool walkBlocks(const PointCloud& cloud, std::span<const ColumnKey> expected, const Stop& stop,
                const BlockVisit& visit, std::string& problem) {
  BlockReader reader(cloud, expected);
  for (std::size_t block = 0; block < cloud.blocks().size() && !stop.requested(); ++block)
    if (!visitBlock(block, reader, visit, problem)) return false;
  return endedWell(stop, problem);
}

} // namespace Zamt::Host
