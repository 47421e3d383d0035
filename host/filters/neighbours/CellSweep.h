#pragma once

#include "files/Stop.h"
#include "host/clouds/PointMask.h"
#include "host/filters/neighbours/NeighbourGrid.h"

#include <cstddef>
#include <cstdint>
#include <limits>
#include <optional>
#include <vector>

namespace Zamt::Host {

/// How many points are wanted within the radius of one, that point itself among them, both ends included.
struct WantedPoints {
  static constexpr std::uint64_t unlimited = std::numeric_limits<std::uint64_t>::max();
  std::uint64_t minimum = 0;
  std::uint64_t maximum = unlimited;

  bool holds(std::uint64_t points) const { return points >= minimum && points <= maximum; }

  /// The answer for any number from `least` to `most`, if it is the same for all of them.
  std::optional<bool> decided(std::uint64_t least, std::uint64_t most) const {
    if (least >= minimum && most <= maximum) return true;
    if (least > maximum || most < minimum) return false;
    return std::nullopt;
  }

  /// From this many points on the answer stays the same.
  std::uint64_t settledAt() const { return maximum == unlimited ? minimum : maximum + 1; }
};

/// The points that those of one cell have to look at, copied together for looking at them many times: as
/// distances from a point of the cell in single precision, in radii. That decides for all but the few that
/// are about as far away as the radius.
class NearPoints {
public:
  struct Run {
    std::size_t begin = 0;
    std::size_t end = 0;
  };

  NearPoints(const NeighbourGrid& grid, double radius);

  /// Whether the cells suit it: not where they are much wider than the radius, or the radius is extreme.
  bool usable() const { return usable_; }

  void collect(const std::array<double, 3>& origin, const std::vector<Run>& runs);
  std::size_t size() const { return points_.size(); }

  /// How many of the points from `begin` to `end` lie within the radius of one in the grid.
  std::uint64_t countWithin(std::size_t point, std::size_t begin, std::size_t end) const;

private:
  float scaled(double distance) const { return static_cast<float>(distance * perRadius_); }

  const NeighbourGrid& grid_;
  double squared_;
  double perRadius_;
  bool usable_ = false;
  float surely_ = 0;   ///< A distance whose square is at most this is within the radius,
  float possibly_ = 0; ///< and one whose square is more than this is not.
  std::array<double, 3> origin_{};
  std::array<std::vector<float>, 3> away_;
  std::vector<std::uint32_t> points_; ///< Their places in the grid.
};

/// Counts neighbours for the points of a stretch of cells. Cells are visited in ascending order, so that the
/// rows around them only ever move forward.
class CellSweep {
public:
  CellSweep(const NeighbourGrid& grid, double radius, const WantedPoints& wanted)
      : grid_(grid),
        squared_(radius * radius),
        wanted_(wanted),
        near_(grid, radius),
        windows_(grid.layout.rows.size()) {}

  /// Sets in `holds` those of the points `asked` for that have as many around them as wanted; other threads
  /// may do so for other cells.
  void run(std::size_t beginCell, std::size_t endCell, const PointMask& asked, const Stop& stop,
           PointMask& holds);

private:
  using Run = NearPoints::Run;

  /// One of the grid's cells, or the end of them, and its key.
  struct Cursor {
    std::size_t cell = 0;
    std::uint64_t key = 0;

    /// Moves on to the first cell whose key is not less than `to`.
    void advance(const NeighbourGrid& grid, std::uint64_t to);
  };

  /// Where one row of cells around the current cell begins and ends.
  struct RowWindow {
    Cursor reachBegin, reachEnd;
    Cursor wholeBegin, wholeEnd;
  };

  void bisect(std::uint64_t key);
  void addRun(const Cursor& begin, const Cursor& end);
  void collectRow(const GridRow& row, RowWindow& window, std::uint64_t key);
  std::optional<bool> collectRuns(std::uint64_t key);
  bool isWorthCopying() const;
  bool countOneByOne(std::size_t point) const;
  bool countCopied(std::size_t point) const;
  std::uint64_t countRun(std::size_t point, std::size_t begin, std::size_t end) const;

  const NeighbourGrid& grid_;
  double squared_;
  WantedPoints wanted_;
  NearPoints near_;
  std::vector<RowWindow> windows_;
  std::vector<Run> runs_;          ///< Of points that have to be looked at.
  std::uint64_t whole_ = 0;        ///< Points that need no looking at.
  std::uint64_t candidates_ = 0;   ///< Points in the runs.
  std::vector<std::size_t> asked_; ///< Points of the current cell.
};

} // namespace Zamt::Host
