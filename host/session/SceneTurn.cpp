#include "host/session/SceneTurn.h"

#include <condition_variable>
#include <cstdint>
#include <mutex>

namespace Zamt::Host {

namespace {

/// As global as the graph that it stands in front of.
struct Queue {
  std::mutex mutex;
  std::condition_variable moved;
  std::uint64_t last = 0;  ///< The number that the next one who asks is given.
  std::uint64_t first = 0; ///< The number whose turn it is.
};

Queue& queue() {
  static Queue only;
  return only;
}

} // namespace

SceneTurn::SceneTurn() {
  std::unique_lock lock(queue().mutex);
  const std::uint64_t mine = queue().last++;
  queue().moved.wait(lock, [mine] { return queue().first == mine; });
}

SceneTurn::~SceneTurn() {
  const std::lock_guard lock(queue().mutex);
  ++queue().first;
  queue().moved.notify_all();
}

} // namespace Zamt::Host
