#include "host/filters/NeighbourFilter.h"

#include "host/filters/neighbours/CellSweep.h"
#include "host/filters/neighbours/NeighbourGrid.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <oneapi/tbb/blocked_range.h>
#include <oneapi/tbb/parallel_for.h>
#include <utility>
#include <vector>

namespace Zamt::Host {
namespace {

/// Points are numbered with 32 bits in the grid, which keeps it a third smaller.
constexpr std::uint64_t maximumPoints = 0xFFFFFFFF;

/// With fewer points asked than one in this many, only their surroundings are put into the grid.
constexpr std::uint64_t fewAsked = 32;

/// Cells that one task works on; enough to make up for finding its first rows by bisection.
constexpr std::size_t cellsPerTask = 2048;

/// Where cells as wide as the radius hold more, finer ones, many of which are counted whole, hold about this
/// many points each; but none are finer than this part of the radius.
constexpr double pointsPerCell = 48;
constexpr double finestCells = 8;

double squaredDiagonal(const Bounds& bounds) {
  double squared = 0;
  for (std::size_t axis = 0; axis < 3; ++axis) {
    const double extent = bounds.high[axis] - bounds.low[axis];
    squared += extent * extent;
  }
  return squared;
}

class NeighbourFilter : public CloudFilter {
public:
  NeighbourFilter(const PointCloud& cloud, double radius, double minimum, double maximum)
      : cloud_(cloud), radius_(radius) {
    const auto others = static_cast<double>(cloud.size() - std::min<std::uint64_t>(cloud.size(), 1));
    impossible_ = !(minimum <= maximum) || maximum < 0 || minimum > others;
    if (impossible_) return;
    wanted_.minimum = static_cast<std::uint64_t>(std::ceil(std::max(minimum, 0.0))) + 1;
    if (maximum < std::min(others, unlimitedNeighbours))
      wanted_.maximum = static_cast<std::uint64_t>(maximum) + 1;
  }

  bool test(const PointMask& asked, const Stop& stop, PointMask& holds, std::string& problem) const override {
    const std::uint64_t count = asked.count();
    if (count == 0 || impossible_) return true;
    if (wanted_.decided(1, WantedPoints::unlimited) == true) {
      holds = asked;
      return true;
    }
    if (cloud_.size() > maximumPoints) {
      problem = "Neighbours can be counted among at most " + std::to_string(maximumPoints) +
                " points. Cut the cloud into tiles.";
      return false;
    }
    const bool few = count < cloud_.size() / fewAsked;
    Places places;
    if (!readPlaces(cloud_, few ? asked : PointMask(cloud_.size(), true), stop, places, problem))
      return false;
    const Bounds& box = places.box;
    const double diagonal = squaredDiagonal(box);
    if (std::isnan(diagonal) || std::isinf(box.low[0] + box.low[1] + box.low[2])) {
      problem =
          "The coordinates of this cloud are not finite, so that neighbours can't be counted. Check the "
          "scale and offset in its header.";
      return false;
    }
    if (diagonal <= radius_ * radius_) {
      if (wanted_.holds(cloud_.size())) holds = asked;
      return true;
    }
    return few ? searchAround(asked, places, stop, holds, problem)
               : search(std::move(places), asked, stop, holds, problem);
  }

private:
  /// Sets in `found` those of the `asked` places that have as many of the others around them as is wanted.
  bool search(Places places, const PointMask& asked, const Stop& stop, PointMask& found,
              std::string& problem) const {
    GridLayout layout = chooseLayout(places);
    const NeighbourGrid grid = makeNeighbourGrid(std::move(places), std::move(layout));
    tbb::parallel_for(tbb::blocked_range<std::size_t>(0, grid.cellCount(), cellsPerTask),
                      [&](const tbb::blocked_range<std::size_t>& range) {
                        CellSweep(grid, radius_, wanted_).run(range.begin(), range.end(), asked, stop, found);
                        cloud_.meter().add(grid.starts[range.end()] - grid.starts[range.begin()]);
                      });
    if (stop.requested()) problem = stoppedMessage;
    return !stop.requested();
  }

  /// The places are those of the few points asked: only their surroundings are put into a grid.
  bool searchAround(const PointMask& asked, const Places& places, const Stop& stop, PointMask& holds,
                    std::string& problem) const {
    PointMask near;
    Places nearPlaces;
    if (!findSurroundings(cloud_, places, makeGridLayout(places.box, radius_, 1), stop, near, problem) ||
        !readPlaces(cloud_, near, stop, nearPlaces, problem))
      return false;
    std::vector<std::uint32_t> points;
    near.list(0, near.size(), points);
    PointMask askedOfThem(points.size());
    for (std::size_t i = 0; i < points.size(); ++i)
      if (asked.test(points[i])) askedOfThem.set(i);
    PointMask found(points.size());
    if (!search(std::move(nearPlaces), askedOfThem, stop, found, problem)) return false;
    for (std::size_t i = 0; i < points.size(); ++i)
      if (found.test(i)) holds.set(points[i]);
    return true;
  }

  GridLayout chooseLayout(const Places& places) const {
    GridLayout layout = makeGridLayout(places.box, radius_, 1);
    const double crowding = estimateCrowding(places, layout);
    const double fineness = std::clamp(std::round(std::sqrt(crowding / pointsPerCell)), 1.0, finestCells);
    return fineness == 1 ? layout : makeGridLayout(places.box, radius_, static_cast<unsigned>(fineness));
  }

  const PointCloud& cloud_;
  double radius_;
  WantedPoints wanted_;
  bool impossible_ = false; ///< No count is in the range.
};

} // namespace

std::shared_ptr<const CloudFilter> makeNeighbourFilter(const PointCloud& cloud, double radius, double minimum,
                                                       double maximum, std::string& problem) {
  if (!(radius >= 0)) {
    problem = "The radius of neighbours is a distance. Give 0 or more.";
    return nullptr;
  }
  if (std::isnan(minimum) || std::isnan(maximum)) {
    problem = "The number of neighbours needs a number at both ends of its range.";
    return nullptr;
  }
  return std::make_shared<NeighbourFilter>(cloud, radius, minimum, maximum);
}

} // namespace Zamt::Host
