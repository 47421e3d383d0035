#include "host/filters/NeighbourFilter.h"

#include "host/filters/neighbours/NeighbourGrid.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <oneapi/tbb/blocked_range.h>
#include <oneapi/tbb/parallel_for.h>
#include <vector>

namespace Zamt::Host {
namespace {

/// Points are numbered with 32 bits in the grid, which keeps it a third smaller.
constexpr std::uint64_t maximumPoints = 0xFFFFFFFF;

/// With fewer points asked than one in this many, only their surroundings are put into the grid.
constexpr std::uint64_t fewAsked = 32;

/// Cells that one task works on; enough to make up for finding its first rows by bisection.
constexpr std::size_t cellsPerTask = 2048;

/// A long run of points is counted in pieces of this many, to see in between whether the answer is settled.
constexpr std::size_t countedAtOnce = 256;

/// The grid is made anew with finer cells, many of which are counted whole, when points look at this many
/// others on average, and finer cells of about this many points each.
constexpr double manyCandidates = 2000;
constexpr double pointsPerFineCell = 16;
constexpr double finestCells = 8;

/// What looking at one candidate costs beside putting one point into a grid.
constexpr double candidatesPerPoint = 100;

/// The number of neighbours asked for, as whole numbers.
struct Wanted {
  std::uint64_t minimum = 0;
  std::uint64_t maximum = 0;
  bool unlimited = false; ///< No count is above the maximum.

  bool holds(std::uint64_t neighbours) const {
    return neighbours >= minimum && (unlimited || neighbours <= maximum);
  }
  /// From this many points within the radius on, the point itself among them, the answer stays the same.
  std::uint64_t settledAt() const { return unlimited ? minimum + 1 : maximum + 2; }
};

struct Run {
  std::size_t begin = 0;
  std::size_t end = 0;
};

/// Where one row of cells around the current cell begins and ends, as positions among the grid's cells.
struct RowWindow {
  std::size_t reachBegin = 0, reachEnd = 0;
  std::size_t wholeBegin = 0, wholeEnd = 0;
};

/// Counts neighbours for the points of a stretch of cells. Cells are visited in ascending order, so that the
/// rows around them only ever move forward.
class CellSweep {
public:
  CellSweep(const NeighbourGrid& grid, double radius, const Wanted& wanted)
      : grid_(grid), squared_(radius * radius), wanted_(wanted), windows_(grid.layout.rows.size()) {}

  void run(std::size_t beginCell, std::size_t endCell, const PointMask& asked, const Stop& stop,
           std::vector<std::uint8_t>& holds) {
    bool started = false;
    for (std::size_t cell = beginCell; cell < endCell && !stop.requested(); ++cell) {
      const std::size_t end = grid_.starts[cell + 1];
      std::size_t at = nextAsked(grid_.starts[cell], end, asked);
      if (at == end) continue;
      if (!started) bisect(grid_.cells[cell]);
      started = true;
      collectRuns(grid_.cells[cell]);
      for (; at != end; at = nextAsked(at + 1, end, asked))
        holds[grid_.points[at]] = wanted_.holds(countAround(at) - 1) ? 1 : 0;
    }
  }

private:
  std::size_t nextAsked(std::size_t at, std::size_t end, const PointMask& asked) const {
    while (at != end && !asked.test(grid_.points[at])) ++at;
    return at;
  }

  static std::uint64_t shifted(std::uint64_t key, std::int64_t by) {
    return key + static_cast<std::uint64_t>(by);
  }

  void bisect(std::uint64_t key) {
    const auto& cells = grid_.cells;
    const auto find = [&](std::uint64_t wantedKey) {
      return static_cast<std::size_t>(std::lower_bound(cells.begin(), cells.end(), wantedKey) -
                                      cells.begin());
    };
    for (std::size_t r = 0; r < windows_.size(); ++r) {
      const GridRow& row = grid_.layout.rows[r];
      const std::size_t begin = find(shifted(key, row.offset - row.reach));
      windows_[r] = {begin, begin, begin, begin};
    }
  }

  void advance(std::size_t& position, std::uint64_t key) const {
    while (position < grid_.cells.size() && grid_.cells[position] < key) ++position;
  }

  void addRun(std::size_t begin, std::size_t end) {
    if (begin != end) runs_.push_back({begin, end});
  }

  /// Lists the points that the points of a cell have to look at, and counts those that need no looking at.
  void collectRuns(std::uint64_t key) {
    runs_.clear();
    whole_ = 0;
    for (std::size_t r = 0; r < windows_.size(); ++r) {
      const GridRow& row = grid_.layout.rows[r];
      RowWindow& window = windows_[r];
      advance(window.reachBegin, shifted(key, row.offset - row.reach));
      advance(window.reachEnd, shifted(key, row.offset + row.reach + 1));
      if (row.wholeWithin < 0) {
        addRun(grid_.starts[window.reachBegin], grid_.starts[window.reachEnd]);
        continue;
      }
      advance(window.wholeBegin, shifted(key, row.offset - row.wholeWithin));
      advance(window.wholeEnd, shifted(key, row.offset + row.wholeWithin + 1));
      whole_ += grid_.starts[window.wholeEnd] - grid_.starts[window.wholeBegin];
      addRun(grid_.starts[window.reachBegin], grid_.starts[window.wholeBegin]);
      addRun(grid_.starts[window.wholeEnd], grid_.starts[window.reachEnd]);
    }
  }

  /// The number of points within the radius of one, itself included, or any number that settles the answer.
  std::uint64_t countAround(std::size_t point) const {
    const std::uint64_t settled = wanted_.settledAt();
    std::uint64_t count = whole_;
    for (const Run& run : runs_)
      for (std::size_t at = run.begin; at < run.end; at += countedAtOnce) {
        if (count >= settled) return count;
        count += countRun(point, at, std::min(at + countedAtOnce, run.end));
      }
    return count;
  }

  std::uint64_t countRun(std::size_t point, std::size_t begin, std::size_t end) const {
    const double px = grid_.x[point];
    const double py = grid_.y[point];
    const double pz = grid_.z[point];
    std::uint64_t count = 0;
    for (std::size_t i = begin; i < end; ++i) {
      const double dx = px - grid_.x[i];
      const double dy = py - grid_.y[i];
      const double dz = pz - grid_.z[i];
      count += dx * dx + dy * dy + dz * dz <= squared_ ? 1 : 0;
    }
    return count;
  }

  const NeighbourGrid& grid_;
  double squared_;
  Wanted wanted_;
  std::vector<RowWindow> windows_;
  std::vector<Run> runs_;
  std::uint64_t whole_ = 0;
};

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
    wanted_.minimum = static_cast<std::uint64_t>(std::ceil(std::max(minimum, 0.0)));
    wanted_.unlimited = maximum >= std::min(others, unlimitedNeighbours);
    wanted_.maximum = wanted_.unlimited ? 0 : static_cast<std::uint64_t>(maximum);
  }

  bool test(const PointMask& asked, const Stop& stop, PointMask& holds, std::string& problem) const override {
    const std::uint64_t count = asked.count();
    if (count == 0 || impossible_) return true;
    if (wanted_.unlimited && wanted_.minimum == 0) {
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
      if (wanted_.holds(cloud_.size() - 1)) holds = asked;
      return true;
    }
    return few ? searchAround(asked, places, stop, holds, problem)
               : searchAll(asked, places, stop, holds, problem);
  }

private:
  /// Works out in `found`, a byte for each of the places, which of the `asked` ones have as many of the
  /// others around them as is wanted.
  bool search(const Places& places, const PointMask& asked, const Stop& stop,
              std::vector<std::uint8_t>& found, std::string& problem) const {
    const NeighbourGrid grid = makeGrid(places, static_cast<double>(asked.count()));
    found.assign(places.count, 0);
    tbb::parallel_for(tbb::blocked_range<std::size_t>(0, grid.cells.size(), cellsPerTask),
                      [&](const tbb::blocked_range<std::size_t>& range) {
                        CellSweep(grid, radius_, wanted_).run(range.begin(), range.end(), asked, stop, found);
                        cloud_.meter().add(grid.starts[range.end()] - grid.starts[range.begin()]);
                      });
    if (stop.requested()) problem = stoppedMessage;
    return !stop.requested();
  }

  /// The places are those of all points.
  bool searchAll(const PointMask& asked, const Places& places, const Stop& stop, PointMask& holds,
                 std::string& problem) const {
    std::vector<std::uint8_t> found;
    if (!search(places, asked, stop, found, problem)) return false;
    tbb::parallel_for(std::size_t{0}, holds.raw().size(), [&](std::size_t word) {
      const std::size_t end = std::min(found.size(), (word + 1) * 64);
      for (std::size_t point = word * 64; point < end; ++point)
        holds.raw()[word] |= static_cast<std::uint64_t>(found[point]) << (point % 64);
    });
    return true;
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
    std::vector<std::uint8_t> found;
    if (!search(nearPlaces, askedOfThem, stop, found, problem)) return false;
    for (std::size_t i = 0; i < points.size(); ++i)
      if (found[i] != 0) holds.set(points[i]);
    return true;
  }

  NeighbourGrid makeGrid(const Places& places, double asked) const {
    NeighbourGrid grid = makeNeighbourGrid(places, makeGridLayout(places.box, radius_, 1));
    const unsigned fineness = chooseFineness(grid, asked);
    if (fineness == 1) return grid;
    grid = NeighbourGrid();
    return makeNeighbourGrid(places, makeGridLayout(places.box, radius_, fineness));
  }

  unsigned chooseFineness(const NeighbourGrid& grid, double asked) const {
    const double crowding = grid.crowding();
    constexpr double cellsLookedAt = 27;
    // A count that is settled early is so after a few times that many candidates.
    const double candidates =
        std::min(crowding * cellsLookedAt, 4 * static_cast<double>(wanted_.settledAt()));
    if (candidates < manyCandidates) return 1;
    if (asked * candidates < candidatesPerPoint * static_cast<double>(grid.count)) return 1;
    return static_cast<unsigned>(
        std::clamp(std::round(std::sqrt(crowding / pointsPerFineCell)), 1.0, finestCells));
  }

  const PointCloud& cloud_;
  double radius_;
  Wanted wanted_;
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
