#pragma once

#include "host/clouds/PointCloud.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>

namespace Zamt::Host {

/// Filters read their columns in pieces of this many points, so that the values fit on the stack and stay in
/// the first-level cache.
inline constexpr std::size_t gatherPoints = 1024;

/// The names of all fields of the cloud in the order of the file, separated by ", ".
std::string fieldNames(const PointCloud& cloud);

/// The field of this name; null, with a sentence in `problem` that names the fields there are, if there is
/// none.
const Field* lookUpField(const PointCloud& cloud, std::string_view name, std::string& problem);

/// The values of one column for one piece.
using PieceValues = std::array<double, gatherPoints>;

/// Reads the values of a piece; gives those that were read.
inline std::span<const double> gatherPiece(const Column& column, std::span<const std::uint32_t> piece,
                                           PieceValues& values) {
  const std::span<double> read = std::span(values).first(piece.size());
  column.gather(piece, read);
  return read;
}

/// Calls `visit(indices, holds)` for one piece of at most `gatherPoints` points after the other.
template <typename Visit>
void forEachPiece(std::span<const std::uint32_t> indices, std::span<std::uint8_t> holds, Visit visit) {
  for (std::size_t at = 0; at < indices.size(); at += gatherPoints) {
    const std::size_t count = std::min(gatherPoints, indices.size() - at);
    visit(indices.subspan(at, count), holds.subspan(at, count));
  }
}

} // namespace Zamt::Host
