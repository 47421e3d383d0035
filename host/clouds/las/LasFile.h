#pragma once

#include "files/MappedFile.h"
#include "host/clouds/CloudFormat.h"
#include "host/clouds/las/LasLayout.h"

#include <cstddef>
#include <memory>
#include <span>
#include <string>

namespace Zamt::Host {

/// An open file that is laid out as LAS, whatever its points are stored as.
struct LasFile {
  std::string path; ///< As the user gave it, for sentences.
  std::unique_ptr<MappedFile> file;
  LasLayout layout;

  std::span<const std::byte> bytes() const { return file->bytes(); }
};

/// What the layout says of the points, without their blocks.
CloudDescription describe(const LasLayout& layout);

} // namespace Zamt::Host
