#pragma once

#include "files/MappedFile.h"
#include "host/clouds/CloudFormat.h"
#include "host/clouds/las/LasLayout.h"

#include <cstddef>
#include <memory>
#include <span>
#include <string>
#include <vector>

namespace Zamt::Host {

/// A file, open or to be made, that is laid out as LAS, whatever its points are stored as.
struct LasFile {
  std::string path;                 ///< As the user gave it, for sentences.
  std::unique_ptr<MappedFile> file; ///< Null for one that is to be made.
  LasLayout layout;
  std::vector<std::byte> made = {}; ///< All there is of a file that is only to be made.

  std::span<const std::byte> bytes() const { return file ? file->bytes() : made; }
};

/// What the layout says of the points, without their blocks.
CloudDescription describe(const LasLayout& layout);

} // namespace Zamt::Host
