#pragma once

#include "host/clouds/las/LasFile.h"
#include "host/clouds/laz/CopcIndex.h"
#include "host/clouds/laz/LazChunks.h"

#include <optional>

namespace Zamt::Host {

/// An open LAZ file.
struct LazFile : LasFile {
  LazFormat coding;
  LazChunks chunks;
  std::size_t lazRecord = 0; ///< The place of the LAZ record among the records of the layout.
  std::optional<CopcIndex> copc;

  std::span<const std::byte> chunk(std::size_t number) const {
    const LazChunk& place = chunks.chunks[number];
    return bytes().subspan(static_cast<std::size_t>(place.offset), static_cast<std::size_t>(place.size));
  }
};

} // namespace Zamt::Host
