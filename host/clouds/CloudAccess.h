#pragma once

#include "files/MappedFile.h"
#include "host/clouds/PointCloud.h"
#include "host/clouds/las/LasLayout.h"

#include <memory>
#include <mutex>
#include <string>
#include <vector>

namespace Zamt::Host {

/// What a cloud is made of; for the writer, which copies the file around the classes.
struct PointCloud::State {
  std::string path;
  std::unique_ptr<MappedFile> file;
  LasLayout layout;
  std::vector<std::unique_ptr<std::uint8_t[]>>
      changedClasses; ///< The classes of each block that was changed.

  struct BlockBox {
    std::once_flag once;
    Bounds box;
  };
  mutable std::vector<BlockBox> boxes;

  const std::byte* record(std::uint64_t point) const {
    return file->bytes().data() + layout.pointOffset + point * layout.recordLength;
  }
  std::uint8_t storedClass(std::uint64_t point) const {
    return std::to_integer<std::uint8_t>(record(point)[layout.classAt]) & layout.classMask;
  }
};

} // namespace Zamt::Host
