#include "fuzz/require.h"
#include "host/clouds/PointCloud.h"

#include <cstdint>
#include <sys/mman.h>
#include <unistd.h>
#include <vector>

using namespace Zamt::Host;
using Zamt::Fuzz::require;
using Zamt::Fuzz::requireSentence;

namespace {

/// Every value of the first points, which touches all that a field claims to lie at.
void readAll(const PointCloud& cloud) {
  constexpr std::uint64_t most = 64;
  std::vector<std::uint32_t> indices;
  for (std::uint32_t i = 0; i < std::min(cloud.size(), most); ++i) indices.push_back(i);
  std::vector<double> values(indices.size());
  const std::uint64_t last = cloud.size() - indices.size();
  for (const Field& field : cloud.fields())
    for (unsigned component = 0; component < field.components; ++component) {
      cloud.gather(field, component, 0, indices, values);
      cloud.gather(field, component, last, indices, values);
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const int file = memfd_create("cloud", 0);
  require(write(file, data, size) == static_cast<ssize_t>(size), "the bytes reach the file");
  std::string error;
  const auto cloud = PointCloud::open("/proc/self/fd/" + std::to_string(file), error);
  if (cloud) {
    readAll(*cloud);
    std::uint64_t counted = 0;
    for (const std::uint64_t count : cloud->countClasses()) counted += count;
    require(counted == cloud->size(), "every point is counted");
    if (cloud->size() > 0) cloud->blockBounds(0);
  } else {
    requireSentence(error);
  }
  close(file);
  return 0;
}
