#pragma once

#include "files/Stop.h"
#include "host/clouds/PointCloud.h"
#include "host/clouds/PointMask.h"
#include "host/filters/neighbours/GridLayout.h"

#include <array>
#include <cstddef>
#include <memory>
#include <string>
#include <vector>

namespace Zamt::Host {

/// The places of some points of a cloud, in the order of the cloud. They stand in pieces, which whoever moves
/// them elsewhere gives back one after the other; so large that each goes back to the system at once. Pieces
/// come without values, so that the threads that fill them also are the first to touch their memory.
struct Places {
  using Piece = std::unique_ptr<std::array<double, 3>[]>;
  static constexpr std::size_t pieceSize = std::size_t{1} << 21U;

  std::size_t count = 0;
  std::vector<Piece> pieces;
  Bounds box; ///< Around all points of the cloud.

  std::array<double, 3>& at(std::size_t i) const { return pieces[i / pieceSize][i % pieceSize]; }
};

/// Reads the places of the points that are set in `members`, which are less than 2^32. False when it was
/// stopped or a block can't be read, with a sentence in `problem`.
bool readPlaces(const PointCloud& cloud, const PointMask& members, const Stop& stop, Places& places,
                std::string& problem);

/// Sets in `found` the points of `cloud` whose cell is, or may be, one that a point at one of the `asked`
/// places has to look into; all others are further from every one than the radius. False as `readPlaces`.
bool findSurroundings(const PointCloud& cloud, const Places& asked, const GridLayout& layout,
                      const Stop& stop, PointMask& found, std::string& problem);

} // namespace Zamt::Host
