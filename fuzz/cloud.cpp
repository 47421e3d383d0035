#include "fuzz/require.h"
#include "host/clouds/cloudInfo.h"
#include "host/clouds/openCloud.h"

#include <cstdint>
#include <sys/mman.h>
#include <unistd.h>

using namespace Zamt::Host;
using Zamt::Fuzz::require;
using Zamt::Fuzz::requireSentence;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const int file = memfd_create("cloud", 0);
  require(write(file, data, size) == static_cast<ssize_t>(size), "the bytes reach the file");
  std::string error;
  const auto cloud = openCloud("/proc/self/fd/" + std::to_string(file), error);
  CloudInfo info;
  if (cloud && inspectCloud(*cloud, Zamt::Stop(), info, error)) { // reads every value of every field
    std::uint64_t counted = 0;
    for (const ClassCount& entry : info.classes) counted += entry.points;
    require(counted == cloud->size(), "every point is counted");
  } else {
    requireSentence(error);
  }
  close(file);
  return 0;
}
