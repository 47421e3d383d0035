#pragma once

#include "host/clouds/Bounds.h"
#include "host/clouds/las/LasEdits.h"
#include "host/clouds/las/LasFile.h"
#include "host/clouds/laz/LazChunks.h"

#include <array>
#include <cstdint>
#include <functional>
#include <span>
#include <string>
#include <vector>

namespace Zamt::Host {

// COPC 1.0 is LAZ with the points sorted into the nodes of an octree, one chunk for each node with points.
//
//   info        the first VLR, "copc" 1 with 160 bytes: f64 centre x, y, z and half edge of the root's cube,
//               f64 spacing of its points; u64 offset and u64 size of the root page; f64 least and greatest
//               GPS time; zeros
//   hierarchy   an EVLR, "copc" 1000. Its data are pages of entries of 32 bytes: i32 level, x, y, z; u64
//   offset;
//               i32 size; i32 points. With points it tells of the chunk of the node; without any it only
//               says that nodes are below it; with -1 it tells of the page with the node and those below.
//
// A node is a cube with edge 2 * half / 2^level. Its corner is that of the root's cube, moved by x, y, z
// edges.

inline constexpr const char* copcUserId = "copc";
inline constexpr std::uint16_t copcInfoId = 1;
inline constexpr std::uint16_t copcHierarchyId = 1000;

/// A node of the tree that has points.
struct CopcNode {
  std::array<std::int32_t, 4> key{}; ///< Level, x, y, z.
  std::size_t chunk = 0;
  std::size_t entry = 0; ///< Where the entry is in the file.
};

/// The octree of one file.
struct CopcIndex {
  std::array<double, 3> centre{};
  double half = 0;
  std::size_t info = 0;           ///< The place of the info among the records of the layout,
  std::size_t hierarchy = 0;      ///< and that of the hierarchy.
  std::vector<CopcNode> nodes;    ///< One for each chunk, in the order of the chunks.
  std::vector<std::size_t> pages; ///< The places of entries that tell of other pages.

  /// The cube of a node in world units, a little enlarged: stored coordinates are rounded.
  Bounds boxOf(const CopcNode& node, const LasLayout& layout) const;
};

/// Whether the file claims to be COPC.
bool isCopc(const LasLayout& layout);

/// Reads the octree of a file whose chunks were found. False, with a sentence in `error` that names the file,
/// when it does not tell of every chunk once.
bool readCopcIndex(const LasFile& file, std::span<const LazChunk> chunks, CopcIndex& index,
                   std::string& error);

/// Has the hierarchy tell of the chunks as they are written, those that are left without points included.
/// `edits` hold all that moves the hierarchy.
void moveCopcPlaces(const LasFile& file, const CopcIndex& index, std::span<const LazChunk> written,
                    LasEdits& edits);

/// Has the info tell of these as the least and the greatest GPS time.
void setCopcTimes(const LasFile& file, const CopcIndex& index, std::array<double, 2> times, LasEdits& edits);

} // namespace Zamt::Host
