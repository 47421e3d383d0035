#pragma once

#include "host/clouds/las/LasFile.h"
#include "host/clouds/laz/ClassContexts.h"
#include "host/clouds/laz/CopcIndex.h"
#include "host/clouds/laz/LazChunks.h"

#include <memory>
#include <optional>

namespace Zamt::Host {

/// An open LAZ file.
struct LazFile : LasFile {
  LazFormat coding;
  LazChunks chunks;
  std::size_t lazRecord = 0; ///< The place of the LAZ record among the records of the layout.
  std::optional<CopcIndex> copc;
  std::unique_ptr<ClassContexts> contexts; ///< Of layered points.

  std::span<const std::byte> chunk(std::size_t number) const {
    const LazChunk& place = chunks.chunks[number];
    return bytes().subspan(static_cast<std::size_t>(place.offset), static_cast<std::size_t>(place.size));
  }

  Compression compression() const;

  /// Where the bytes behind the points start that are kept when the points are written anew. A file without a
  /// table that can be used may end in anything, except that EVLRs which are all sound are what they seem.
  std::size_t keptFrom() const;

  /// Has the header count no EVLRs when those it counts are not kept.
  void uncountLostRecords(LasEdits& edits) const;
};

} // namespace Zamt::Host
