// Whole LAZ files: what is read of any bytes is consistent, and what is written of it reads back with the
// same points.

#include "fuzz/files.h"
#include "host/clouds/BlockReader.h"
#include "host/clouds/cloudInfo.h"
#include "host/clouds/openCloud.h"

using namespace Zamt::Host;
using Zamt::Fuzz::require;
using Zamt::Fuzz::requireSentence;

namespace {

const Zamt::Stop goOn;

/// More points than this take longer than a fuzzer has.
constexpr std::uint64_t mostPoints = 1'000'000;

/// Puts the first point of each block into class 1. False when a block can't be read.
bool changeSome(PointCloud& cloud, std::string& error) {
  BlockReader reader(cloud);
  for (std::size_t block = 0; block < cloud.blocks().size(); ++block) {
    if (cloud.blocks().count(block) == 0) continue;
    reader.moveTo(block);
    const std::uint32_t first = 0;
    cloud.setClass(reader, std::span(&first, 1), 1);
    if (reader.failed()) error = reader.problem();
    if (reader.failed()) return false;
  }
  return true;
}

void rewrite(PointCloud& cloud, const std::string& ending, const CloudInfo& info) {
  static const Zamt::Fuzz::Folder folder;
  std::string error;
  const std::string path = folder.path("out" + ending);
  if (!changeSome(cloud, error) || !cloud.write({{1, "One"}}, path, goOn, error))
    return requireSentence(error);
  const auto again = openCloud(path, error);
  require(again != nullptr, "what was written can be opened");
  CloudInfo written;
  require(inspectCloud(*again, goOn, written, error), "what was written can be read");
  require(written.points == info.points, "no point is lost");
  ClassCounts expected;
  require(countClasses(cloud, goOn, expected, error), "what was changed can be counted");
  for (const ClassCount& entry : written.classes)
    require(entry.points == expected[entry.number], "the classes are those that were written");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const Zamt::Fuzz::MemoryFile file(data, size);
  std::string error;
  const auto cloud = openCloud(file.path(), error);
  CloudInfo info;
  if (!cloud) {
    requireSentence(error);
  } else if (cloud->size() <= mostPoints) {
    if (!inspectCloud(*cloud, goOn, info, error))
      requireSentence(error);
    else
      for (const char* ending : {".laz", ".las"}) rewrite(*cloud, ending, info);
  }
  return 0;
}
