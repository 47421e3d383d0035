#include "host/clouds/buildCloud.h"
#include "tests/support/ArrayCloud.h"
#include "tests/support/TemporaryDirectory.h"
#include "tests/support/tracedChild.h"

#include <cerrno>
#include <oneapi/tbb/global_control.h>

#if defined(__x86_64__)

namespace Zamt::Host {
namespace {

using Testing::readFile;

constexpr int written = 0;
constexpr int refused = 1;

/// Writes the cloud at `from` with one class more to `to`.
int rewrite(const std::string& from, const std::string& to) {
  std::string error;
  const auto cloud = openCloud(from, error);
  if (!cloud) return refused;
  Testing::setClasses(*cloud, 6, [](std::uint64_t point) { return point % 3 == 0; });
  return cloud->write({{6, "House"}}, to, Testing::goOn, error) ? written : refused;
}

/// What becomes of a cloud when the system, or the process, fails while it is written over itself.
class WriteFaults : public testing::TestWithParam<std::string> {};

TEST_P(WriteFaults, LeaveTheOldCloudOrTheNewAtEveryCall) {
  // A child that is forked has one thread.
  const tbb::global_control alone(tbb::global_control::max_allowed_parallelism, 1);
  const Testing::TemporaryDirectory directory;
  const std::string path = directory.path("cloud" + GetParam());
  std::string error;
  const auto place = [](std::uint64_t i, NewPoint& point) {
    point.position = {1.0 * static_cast<double>(i), 2, 3};
  };
  ASSERT_TRUE(buildCloud({}, 50, place, directory.path("in.las"), Testing::goOn, error)) << error;
  ASSERT_TRUE(openCloud(directory.path("in.las"), error)->write({}, path, Testing::goOn, error)) << error;
  const std::string oldBytes = readFile(path);
  ASSERT_EQ(rewrite(path, path), written);
  const std::string newBytes = readFile(path);
  const std::set<std::string> names = directory.names();
  for (const Testing::CallFault kind :
       {Testing::CallFault{0, true, 0}, {0, false, ENOSPC}, {0, false, EIO}}) {
    Testing::CallFault fault = kind;
    bool ended = false;
    while (!ended) {
      SCOPED_TRACE("call " + std::to_string(++fault.atCall));
      directory.write("cloud" + GetParam(), oldBytes);
      const auto traced = Testing::traceWith(fault, [&] { return rewrite(path, path); });
      if (!traced) GTEST_SKIP() << "This machine does not let processes be traced.";
      const std::string held = readFile(path);
      EXPECT_TRUE(held == oldBytes || held == newBytes);
      if (!fault.kill) {
        EXPECT_TRUE(WIFEXITED(traced->status));
        EXPECT_EQ(WEXITSTATUS(traced->status), held == newBytes ? written : refused);
        EXPECT_FALSE(traced->decisive && held == newBytes);
      }
      ended = traced->ended;
    }
    EXPECT_GT(fault.atCall, 6);          // open, make, write, flush, close and rename at the least
    EXPECT_EQ(directory.names(), names); // the last one swept what the killed ones left
  }
}

INSTANTIATE_TEST_SUITE_P(Each, WriteFaults, testing::Values(".las", ".laz"),
                         [](const auto& ending) { return ending.param.substr(1); });

} // namespace
} // namespace Zamt::Host

#endif
