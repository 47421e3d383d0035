#include "host/filters/neighbours/CellSweep.h"

#include <algorithm>
#include <atomic>

/// Has a function made for wider registers, too; which one is called is settled when the program starts.
#if defined(__x86_64__) && defined(__GLIBC__)
#define QUINDLE_WIDE __attribute__((target_clones("avx2", "default")))
#else
#define QUINDLE_WIDE
#endif

namespace Zamt::Host {
namespace {

/// A long run of points is counted in pieces of this many, to see in between whether the answer is settled.
constexpr std::size_t countedAtOnce = 256;

/// Copying the points around a cell is worth it where this many may have to be looked at, by this many.
constexpr std::uint64_t manyCandidates = 64;
constexpr std::size_t manyAsked = 4;

/// More than the relative error of the square of a distance in single precision, for distances of up to a
/// radius between points up to one radius from the origin; the error grows with the square of the latter.
constexpr double singleError = 0x1p-18;

/// Copied points are at most this many radii from their origin.
constexpr double furthestCopied = 8;

/// Radii whose squares, and those of whose parts, are ordinary numbers.
constexpr double smallRadius = 1e-100;
constexpr double largeRadius = 1e100;

void setShared(PointMask& mask, std::uint64_t point) {
  std::atomic_ref(mask.raw()[point / 64])
      .fetch_or(std::uint64_t{1} << (point % 64), std::memory_order_relaxed);
}

bool isWithin(const std::array<double, 3>& a, const std::array<double, 3>& b, double squaredRadius) {
  const double dx = a[0] - b[0];
  const double dy = a[1] - b[1];
  const double dz = a[2] - b[2];
  return dx * dx + dy * dy + dz * dz <= squaredRadius;
}

struct Counts {
  std::uint32_t surely = 0;
  std::uint32_t possibly = 0;
};

/// How many of `count` points have squares of distances from `p` up to two limits.
QUINDLE_WIDE Counts countNear(const std::array<float, 3>& p, const std::array<const float*, 3>& others,
                              std::size_t count, float surely, float possibly) {
  Counts counts;
  for (std::size_t i = 0; i < count; ++i) {
    const float dx = p[0] - others[0][i];
    const float dy = p[1] - others[1][i];
    const float dz = p[2] - others[2][i];
    const float squared = dx * dx + dy * dy + dz * dz;
    counts.surely += squared <= surely ? 1U : 0U;
    counts.possibly += squared <= possibly ? 1U : 0U;
  }
  return counts;
}

std::uint64_t shifted(std::uint64_t key, std::int64_t by) { return key + static_cast<std::uint64_t>(by); }

} // namespace

NearPoints::NearPoints(const NeighbourGrid& grid, double radius)
    : grid_(grid), squared_(radius * radius), perRadius_(1 / radius) {
  double furthest = 0;
  for (std::size_t axis = 0; axis < 3; ++axis)
    furthest = std::max(furthest, static_cast<double>(grid.layout.border[axis] + 1) /
                                      grid.layout.perUnit[axis] * perRadius_);
  usable_ = radius > smallRadius && radius < largeRadius && furthest <= furthestCopied;
  surely_ = static_cast<float>(1 - singleError * furthest * furthest);
  possibly_ = static_cast<float>(1 + singleError * furthest * furthest);
}

void NearPoints::collect(const std::array<double, 3>& origin, const std::vector<Run>& runs) {
  origin_ = origin;
  std::size_t size = 0;
  for (const Run& run : runs) size += run.end - run.begin;
  points_.resize(size);
  for (std::vector<float>& each : away_) each.resize(size);
  std::size_t to = 0;
  for (const Run& run : runs)
    for (std::size_t i = run.begin; i < run.end; ++i, ++to) {
      points_[to] = static_cast<std::uint32_t>(i);
      for (std::size_t axis = 0; axis < 3; ++axis) away_[axis][to] = scaled(grid_.at[i][axis] - origin[axis]);
    }
}

std::uint64_t NearPoints::countWithin(std::size_t point, std::size_t begin, std::size_t end) const {
  const std::array<double, 3>& at = grid_.at[point];
  const std::array<float, 3> p{scaled(at[0] - origin_[0]), scaled(at[1] - origin_[1]),
                               scaled(at[2] - origin_[2])};
  const std::array<const float*, 3> others{&away_[0][begin], &away_[1][begin], &away_[2][begin]};
  const Counts counts = countNear(p, others, end - begin, surely_, possibly_);
  if (counts.surely == counts.possibly) return counts.surely;
  std::uint64_t within = 0;
  for (std::size_t i = begin; i < end; ++i) within += isWithin(at, grid_.at[points_[i]], squared_) ? 1U : 0U;
  return within;
}

void CellSweep::run(std::size_t beginCell, std::size_t endCell, const PointMask& asked, const Stop& stop,
                    PointMask& holds) {
  bool started = false;
  for (std::size_t cell = beginCell; cell < endCell && !stop.requested(); ++cell) {
    asked_.clear();
    for (std::size_t at = grid_.starts[cell]; at != grid_.starts[cell + 1]; ++at)
      if (asked.test(grid_.points[at])) asked_.push_back(at);
    if (asked_.empty()) continue;
    if (!started) bisect(grid_.cells[cell]);
    started = true;
    const std::optional<bool> all = collectRuns(grid_.cells[cell]);
    if (all == false) continue;
    const bool copied = !all && isWorthCopying();
    if (copied) near_.collect(grid_.at[asked_.front()], runs_);
    for (const std::size_t point : asked_)
      if (all || (copied ? countCopied(point) : countOneByOne(point))) setShared(holds, grid_.points[point]);
  }
}

void CellSweep::Cursor::advance(const NeighbourGrid& grid, std::uint64_t to) {
  while (key < to) key = grid.cells[++cell];
}

void CellSweep::bisect(std::uint64_t key) {
  const auto& cells = grid_.cells;
  for (std::size_t r = 0; r < windows_.size(); ++r) {
    const GridRow& row = grid_.layout.rows[r];
    const auto begin = std::lower_bound(cells.begin(), cells.end(), shifted(key, row.offset - row.reach));
    const Cursor cursor{static_cast<std::size_t>(begin - cells.begin()), *begin};
    windows_[r] = {cursor, cursor, cursor, cursor};
  }
}

void CellSweep::addRun(const Cursor& begin, const Cursor& end) {
  if (begin.cell == end.cell) return;
  const Run run{grid_.starts[begin.cell], grid_.starts[end.cell]};
  candidates_ += run.end - run.begin;
  runs_.push_back(run);
}

void CellSweep::collectRow(const GridRow& row, RowWindow& window, std::uint64_t key) {
  const std::uint64_t end = shifted(key, row.offset + row.reach + 1);
  window.reachBegin.advance(grid_, shifted(key, row.offset - row.reach));
  if (window.reachBegin.key >= end) return;
  window.reachEnd.advance(grid_, end);
  if (row.wholeWithin < 0) {
    addRun(window.reachBegin, window.reachEnd);
    return;
  }
  window.wholeBegin.advance(grid_, shifted(key, row.offset - row.wholeWithin));
  window.wholeEnd.advance(grid_, shifted(key, row.offset + row.wholeWithin + 1));
  whole_ += grid_.starts[window.wholeEnd.cell] - grid_.starts[window.wholeBegin.cell];
  addRun(window.reachBegin, window.wholeBegin);
  addRun(window.wholeEnd, window.reachEnd);
}

/// Lists the points that the points of a cell have to look at, and counts those that need no looking at. The
/// answer for all points of the cell, if that settles it.
std::optional<bool> CellSweep::collectRuns(std::uint64_t key) {
  runs_.clear();
  whole_ = 0;
  candidates_ = 0;
  for (std::size_t r = 0; r < windows_.size(); ++r) {
    collectRow(grid_.layout.rows[r], windows_[r], key);
    if (whole_ >= wanted_.settledAt()) return wanted_.holds(whole_);
  }
  return wanted_.decided(std::max<std::uint64_t>(whole_, 1), whole_ + candidates_);
}

bool CellSweep::isWorthCopying() const {
  return near_.usable() && asked_.size() >= manyAsked &&
         std::min(candidates_, wanted_.settledAt() - whole_) >= manyCandidates;
}

bool CellSweep::countCopied(std::size_t point) const {
  std::uint64_t count = whole_;
  std::size_t at = 0;
  for (;;) {
    const std::optional<bool> decided = wanted_.decided(count, count + near_.size() - at);
    if (decided) return *decided;
    const std::size_t end = std::min(at + countedAtOnce, near_.size());
    count += near_.countWithin(point, at, end);
    at = end;
  }
}

bool CellSweep::countOneByOne(std::size_t point) const {
  const std::uint64_t settled = wanted_.settledAt();
  std::uint64_t count = whole_;
  for (const Run& run : runs_)
    for (std::size_t at = run.begin; at < run.end; at += countedAtOnce) {
      if (count >= settled) return wanted_.holds(count);
      count += countRun(point, at, std::min(at + countedAtOnce, run.end));
    }
  return wanted_.holds(count);
}

std::uint64_t CellSweep::countRun(std::size_t point, std::size_t begin, std::size_t end) const {
  const std::array<double, 3> at = grid_.at[point];
  std::uint64_t count = 0;
  for (std::size_t i = begin; i < end; ++i) count += isWithin(at, grid_.at[i], squared_) ? 1 : 0;
  return count;
}

} // namespace Zamt::Host
