#include "host/filters/NeighbourFilter.h"

#include "files/Interruption.h"
#include "host/filters/FieldLookup.h"
#include "host/filters/NeighbourGrid.h"

#include <tbb/blocked_range.h>
#include <tbb/parallel_for.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <limits>
#include <span>
#include <vector>

namespace Zamt::Host {
namespace {

// Points are numbered with 32 bits in the grid, which keeps it a third smaller.
constexpr std::uint64_t maximumPoints = 0xFFFFFFFF;

// With fewer points asked than one in this many, only their surroundings are put into the grid.
constexpr std::uint64_t fewAsked = 32;

// Cells that one task works on; enough to make up for finding its first rows by bisection.
constexpr std::size_t cellsPerTask = 2048;

// A long run of points is counted in pieces of this many, to see in between whether the answer is settled.
constexpr std::size_t countedAtOnce = 256;

// The grid is made anew with finer cells, many of which are counted whole, when points look at this many
// others on average, and finer cells of about this many points each.
constexpr double manyCandidates = 2000;
constexpr double pointsPerFineCell = 16;
constexpr double finestCells = 8;

// What looking at one candidate costs beside putting one point into a grid.
constexpr double candidatesPerPoint = 100;

// The number of neighbours asked for, as whole numbers.
struct Wanted {
  std::uint64_t minimum = 0;
  std::uint64_t maximum = 0;
  bool unlimited = false; // No count is above the maximum.

  bool holds(std::uint64_t neighbours) const {
    return neighbours >= minimum && (unlimited || neighbours <= maximum);
  }
  // From this many points within the radius on, the point itself among them, the answer stays the same.
  std::uint64_t settledAt() const { return unlimited ? minimum + 1 : maximum + 2; }
};

struct Run {
  std::size_t begin = 0;
  std::size_t end = 0;
};

// Where one row of cells around the current cell begins and ends, as positions among the grid's cells.
struct RowWindow {
  std::size_t reachBegin = 0, reachEnd = 0;
  std::size_t wholeBegin = 0, wholeEnd = 0;
};

// Counts neighbours for the points of a stretch of cells. Cells are visited in ascending order, so that the
// rows around them only ever move forward.
class CellSweep {
public:
  CellSweep(const NeighbourGrid& neighbourGrid, double radius, const Wanted& wantedCount)
      : grid(neighbourGrid),
        squared(radius * radius),
        wanted(wantedCount),
        windows(grid.layout.rows.size()) {}

  void run(std::size_t beginCell, std::size_t endCell, const PointMask& asked,
           std::vector<std::uint8_t>& holds) {
    bool started = false;
    for (std::size_t cell = beginCell; cell < endCell && !interrupted; ++cell) {
      const std::size_t end = grid.starts[cell + 1];
      std::size_t at = nextAsked(grid.starts[cell], end, asked);
      if (at == end) continue;
      if (!started) bisect(grid.cells[cell]);
      started = true;
      collectRuns(grid.cells[cell]);
      for (; at != end; at = nextAsked(at + 1, end, asked))
        holds[grid.points[at]] = wanted.holds(countAround(at) - 1) ? 1 : 0;
    }
  }

private:
  std::size_t nextAsked(std::size_t at, std::size_t end, const PointMask& asked) const {
    while (at != end && !asked.test(grid.points[at])) ++at;
    return at;
  }

  static std::uint64_t shifted(std::uint64_t key, std::int64_t by) {
    return key + static_cast<std::uint64_t>(by);
  }

  void bisect(std::uint64_t key) {
    const auto& cells = grid.cells;
    const auto find = [&](std::uint64_t wantedKey) {
      return static_cast<std::size_t>(std::lower_bound(cells.begin(), cells.end(), wantedKey) -
                                      cells.begin());
    };
    for (std::size_t r = 0; r < windows.size(); ++r) {
      const GridRow& row = grid.layout.rows[r];
      const std::size_t begin = find(shifted(key, row.offset - row.reach));
      windows[r] = {begin, begin, begin, begin};
    }
  }

  void advance(std::size_t& position, std::uint64_t key) const {
    while (position < grid.cells.size() && grid.cells[position] < key) ++position;
  }

  void addRun(std::size_t begin, std::size_t end) {
    if (begin != end) runs.push_back({begin, end});
  }

  // Lists the points that the points of a cell have to look at, and counts those that need no looking at.
  void collectRuns(std::uint64_t key) {
    runs.clear();
    whole = 0;
    for (std::size_t r = 0; r < windows.size(); ++r) {
      const GridRow& row = grid.layout.rows[r];
      RowWindow& window = windows[r];
      advance(window.reachBegin, shifted(key, row.offset - row.reach));
      advance(window.reachEnd, shifted(key, row.offset + row.reach + 1));
      if (row.wholeWithin < 0) {
        addRun(grid.starts[window.reachBegin], grid.starts[window.reachEnd]);
        continue;
      }
      advance(window.wholeBegin, shifted(key, row.offset - row.wholeWithin));
      advance(window.wholeEnd, shifted(key, row.offset + row.wholeWithin + 1));
      whole += grid.starts[window.wholeEnd] - grid.starts[window.wholeBegin];
      addRun(grid.starts[window.reachBegin], grid.starts[window.wholeBegin]);
      addRun(grid.starts[window.wholeEnd], grid.starts[window.reachEnd]);
    }
  }

  // The number of points within the radius of one, itself included, or any number that settles the answer.
  std::uint64_t countAround(std::size_t point) const {
    const std::uint64_t settled = wanted.settledAt();
    std::uint64_t count = whole;
    for (const Run& run : runs)
      for (std::size_t at = run.begin; at < run.end; at += countedAtOnce) {
        if (count >= settled) return count;
        count += countRun(point, at, std::min(at + countedAtOnce, run.end));
      }
    return count;
  }

  std::uint64_t countRun(std::size_t point, std::size_t begin, std::size_t end) const {
    const double px = grid.x[point];
    const double py = grid.y[point];
    const double pz = grid.z[point];
    std::uint64_t count = 0;
    for (std::size_t i = begin; i < end; ++i) {
      const double dx = px - grid.x[i];
      const double dy = py - grid.y[i];
      const double dz = pz - grid.z[i];
      count += dx * dx + dy * dy + dz * dz <= squared ? 1 : 0;
    }
    return count;
  }

  const NeighbourGrid& grid;
  double squared;
  Wanted wanted;
  std::vector<RowWindow> windows;
  std::vector<Run> runs;
  std::uint64_t whole = 0;
};

Bounds boundsOf(const PointCloud& cloud) {
  const std::uint64_t blocks = (cloud.size() + blockPoints - 1) / blockPoints;
  std::vector<Bounds> ofBlocks(static_cast<std::size_t>(blocks));
  tbb::parallel_for(std::uint64_t{0}, blocks, [&](std::uint64_t block) {
    ofBlocks[static_cast<std::size_t>(block)] = cloud.blockBounds(block * blockPoints);
  });
  Bounds all = ofBlocks.front();
  for (const Bounds& one : ofBlocks)
    for (std::size_t axis = 0; axis < 3; ++axis) {
      all.low[axis] = std::min(all.low[axis], one.low[axis]);
      all.high[axis] = std::max(all.high[axis], one.high[axis]);
    }
  return all;
}

class NeighbourFilter : public CloudFilter {
public:
  NeighbourFilter(const PointCloud& pointCloud, double searchRadius, double minimum, double maximum)
      : cloud(pointCloud), radius(searchRadius) {
    const auto others = static_cast<double>(cloud.size() - std::min<std::uint64_t>(cloud.size(), 1));
    impossible = !(minimum <= maximum) || maximum < 0 || minimum > others;
    if (impossible) return;
    wanted.minimum = static_cast<std::uint64_t>(std::ceil(std::max(minimum, 0.0)));
    wanted.unlimited = maximum >= std::min(others, unlimitedNeighbours);
    wanted.maximum = wanted.unlimited ? 0 : static_cast<std::uint64_t>(maximum);
  }

  bool test(const PointMask& asked, PointMask& holds, std::string& problem) const override {
    const std::uint64_t count = asked.count();
    if (count == 0 || impossible) return true;
    if (wanted.unlimited && wanted.minimum == 0) {
      holds = asked;
      return true;
    }
    if (cloud.size() > maximumPoints) {
      problem = "Neighbours can be counted among at most " + std::to_string(maximumPoints) +
                " points. Cut the cloud into tiles.";
      return false;
    }
    const Bounds bounds = boundsOf(cloud);
    double diagonal = 0;
    for (std::size_t axis = 0; axis < 3; ++axis) {
      const double extent = bounds.high[axis] - bounds.low[axis];
      diagonal += extent * extent;
    }
    if (std::isnan(diagonal) || std::isinf(bounds.low[0] + bounds.low[1] + bounds.low[2])) {
      problem =
          "The coordinates of this cloud are not finite, so that neighbours can't be counted. Check the "
          "scale and offset in its header.";
      return false;
    }
    if (diagonal <= radius * radius) {
      if (wanted.holds(cloud.size() - 1)) holds = asked;
      return true;
    }
    return search(bounds, asked, count, holds, problem);
  }

private:
  bool search(const Bounds& bounds, const PointMask& asked, std::uint64_t count, PointMask& holds,
              std::string& problem) const {
    const NeighbourGrid grid = makeGrid(bounds, asked, count);
    std::vector<std::uint8_t> found(static_cast<std::size_t>(cloud.size()), 0);
    tbb::parallel_for(tbb::blocked_range<std::size_t>(0, grid.cells.size(), cellsPerTask),
                      [&](const tbb::blocked_range<std::size_t>& range) {
                        CellSweep(grid, radius, wanted).run(range.begin(), range.end(), asked, found);
                      });
    if (interrupted) {
      problem = interruptedMessage;
      return false;
    }
    const std::size_t words = holds.raw().size();
    tbb::parallel_for(std::size_t{0}, words, [&](std::size_t word) {
      const std::size_t end = std::min(found.size(), (word + 1) * 64);
      for (std::size_t point = word * 64; point < end; ++point)
        holds.raw()[word] |= static_cast<std::uint64_t>(found[point]) << (point % 64);
    });
    return true;
  }

  NeighbourGrid makeGrid(const Bounds& bounds, const PointMask& asked, std::uint64_t count) const {
    GridLayout layout = makeGridLayout(bounds, radius, 1);
    const bool few = count < cloud.size() / fewAsked;
    const PointMask members = few ? findSurroundings(cloud, asked, layout) : PointMask(cloud.size(), true);
    NeighbourGrid grid = makeNeighbourGrid(cloud, members, std::move(layout));
    const unsigned fineness = chooseFineness(grid, static_cast<double>(count));
    if (fineness == 1) return grid;
    grid = NeighbourGrid();
    return makeNeighbourGrid(cloud, members, makeGridLayout(bounds, radius, fineness));
  }

  unsigned chooseFineness(const NeighbourGrid& grid, double asked) const {
    const double crowding = grid.crowding();
    constexpr double cellsLookedAt = 27;
    // A count that is settled early is so after a few times that many candidates.
    const double candidates = std::min(crowding * cellsLookedAt, 4 * static_cast<double>(wanted.settledAt()));
    if (candidates < manyCandidates) return 1;
    if (asked * candidates < candidatesPerPoint * static_cast<double>(grid.count)) return 1;
    return static_cast<unsigned>(
        std::clamp(std::round(std::sqrt(crowding / pointsPerFineCell)), 1.0, finestCells));
  }

  const PointCloud& cloud;
  double radius;
  Wanted wanted;
  bool impossible = false; // No count is in the range.
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
