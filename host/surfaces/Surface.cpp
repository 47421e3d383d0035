#include "host/surfaces/Surface.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace Zamt::Host {

namespace {

/// Beyond this, products of coordinates leave the range of a double; no survey comes near it.
constexpr double largestCoordinate = 1e100;

/// From one level to the next, cells grow by this. Triangles of a real surface then lie in two or three
/// levels, each of which costs a query one look-up.
constexpr double levelGrowth = 4;

/// So many levels reach from the smallest to the largest triangle; smaller ones share the lowest level.
constexpr int levelsBelowTypical = 12;
constexpr int levelsAboveTypical = 20;
constexpr int levelCount = levelsBelowTypical + 1 + levelsAboveTypical;

/// Cells of the typical level are this part of a typical triangle.
constexpr double cellsPerTypicalTriangle = 3;

bool usable(const std::array<double, 3>& vertex) {
  return std::all_of(vertex.begin(), vertex.end(),
                     [](double value) { return std::abs(value) <= largestCoordinate; });
}

/// Twice the area of the triangle p, q, (x, y), positive where the last lies left of the way from p to q.
double side(double px, double py, double qx, double qy, double x, double y) {
  return (qx - px) * (y - py) - (qy - py) * (x - px);
}

std::uint64_t cellIndex(double distance, double perCell, std::uint64_t count) {
  const double index = distance * perCell;
  if (!(index > 0)) return 0;
  return index >= static_cast<double>(count) ? count - 1 : static_cast<std::uint64_t>(index);
}

} // namespace

Surface::Surface(const Mesh& mesh) {
  double largest = 0;
  for (const auto& vertex : mesh.vertices)
    if (usable(vertex)) largest = std::max({largest, std::abs(vertex[0]), std::abs(vertex[1])});
  // The file's decimals and the points' scaled integers each come within one unit in the last place.
  rounding_ = 4 * largest * std::numeric_limits<double>::epsilon();

  triangles_.reserve(mesh.triangles.size());
  for (const auto& corners : mesh.triangles) addTriangle(mesh, corners);
  if (triangles_.empty()) return;
  constexpr double infinity = std::numeric_limits<double>::infinity();
  bounds_ = {infinity, infinity, -infinity, -infinity};
  for (const Triangle& t : triangles_) {
    bounds_[0] = std::min(bounds_[0], t.ax);
    bounds_[1] = std::min({bounds_[1], t.ay, t.by, t.cy});
    bounds_[2] = std::max(bounds_[2], t.cx);
    bounds_[3] = std::max({bounds_[3], t.ay, t.by, t.cy});
  }
  buildIndex();
}

bool Surface::addTriangle(const Mesh& mesh, const std::array<std::uint32_t, 3>& corners) {
  std::array<std::array<double, 3>, 3> v;
  for (std::size_t i = 0; i < 3; ++i) v[i] = mesh.vertices[corners[i]];
  if (!std::all_of(v.begin(), v.end(), usable)) return false;
  std::sort(v.begin(), v.end());
  const double area = side(v[0][0], v[0][1], v[2][0], v[2][1], v[1][0], v[1][1]);
  const double reach = std::max({std::abs(v[2][0] - v[0][0]) + std::abs(v[2][1] - v[0][1]),
                                 std::abs(v[1][0] - v[0][0]) + std::abs(v[1][1] - v[0][1]),
                                 std::abs(v[2][0] - v[1][0]) + std::abs(v[2][1] - v[1][1])});
  // A wall written in decimals is not exactly upright: an area that rounding alone can make is none.
  if (std::abs(area) <= reach * rounding_) return false;
  triangles_.push_back({v[0][0], v[0][1], v[0][2], v[1][0], v[1][1], v[1][2], v[2][0], v[2][1], v[2][2]});
  return true;
}

std::uint64_t Surface::Level::placeOf(std::uint64_t column, std::uint64_t row) const {
  const std::uint64_t number = row * columns + column;
  if (!shared) return firstPlace + number;
  return firstPlace + (number * 0x9E3779B97F4A7C15U >> 16U) % places;
}

/// Calls `visit` with the place of every cell that the triangle may reach into.
template <typename Visit>
void Surface::visitCells(const Triangle& t, const Level& level, Visit&& visit) const {
  const double slack = rounding_ + level.cell * 1e-6;
  const auto column = [&](double x) { return cellIndex(x - bounds_[0], level.perCell, level.columns); };
  const auto row = [&](double y) { return cellIndex(y - bounds_[1], level.perCell, level.rows); };
  const std::uint64_t lastColumn = column(t.cx + slack);
  const std::uint64_t firstRow = row(std::min({t.ay, t.by, t.cy}) - slack);
  const std::uint64_t lastRow = row(std::max({t.ay, t.by, t.cy}) + slack);
  // A cell is passed over when it lies wholly on the outer side of one edge.
  const double turn = side(t.ax, t.ay, t.cx, t.cy, t.bx, t.by) > 0 ? 1 : -1;
  const double half = level.cell / 2 + slack;
  const auto outside = [&](double px, double py, double qx, double qy, double sign, double x, double y) {
    const double reach = half * (std::abs(qx - px) + std::abs(qy - py));
    return sign * side(px, py, qx, qy, x, y) < -reach;
  };
  for (std::uint64_t r = firstRow; r <= lastRow; ++r)
    for (std::uint64_t c = column(t.ax - slack); c <= lastColumn; ++c) {
      const double x = bounds_[0] + (static_cast<double>(c) + 0.5) * level.cell;
      const double y = bounds_[1] + (static_cast<double>(r) + 0.5) * level.cell;
      if (outside(t.ax, t.ay, t.cx, t.cy, turn, x, y) || outside(t.ax, t.ay, t.bx, t.by, -turn, x, y) ||
          outside(t.bx, t.by, t.cx, t.cy, -turn, x, y))
        continue;
      visit(level.placeOf(c, r));
    }
}

/// Makes the levels that hold triangles, with tables no longer than a few places a triangle.
void Surface::makeLevels(std::span<const std::uint8_t> levelOf, std::span<const double> cellSizes) {
  std::array<std::uint64_t, levelCount> held{};
  for (const std::uint8_t level : levelOf) ++held[level];
  std::size_t places = 0;
  for (std::size_t i = 0; i < cellSizes.size(); ++i) {
    Level& level = levels_.emplace_back();
    level.places = 0;
    level.firstPlace = places;
    if (held[i] == 0) continue;
    level.cell = cellSizes[i];
    level.perCell = 1 / level.cell;
    // Cells farther out than this lie beyond what a double tells apart; they share the last one.
    constexpr double mostCells = 1U << 30U;
    level.columns =
        static_cast<std::uint64_t>(std::min((bounds_[2] - bounds_[0]) * level.perCell, mostCells)) + 1;
    level.rows =
        static_cast<std::uint64_t>(std::min((bounds_[3] - bounds_[1]) * level.perCell, mostCells)) + 1;
    level.places = std::min(level.columns * level.rows, 8 * held[i] + 8);
    level.shared = level.places < level.columns * level.rows;
    places += level.places;
  }
  placeStarts_.assign(places + 1, 0);
}

void Surface::buildIndex() {
  const auto extent = [](const Triangle& t) {
    return std::max(t.cx - t.ax, std::max({t.ay, t.by, t.cy}) - std::min({t.ay, t.by, t.cy}));
  };
  std::vector<double> extents(triangles_.size());
  std::transform(triangles_.begin(), triangles_.end(), extents.begin(), extent);
  std::vector<double> sorted = extents;
  const auto middle = sorted.begin() + static_cast<std::ptrdiff_t>(sorted.size() / 2);
  std::nth_element(sorted.begin(), middle, sorted.end());

  const double whole = std::max(bounds_[2] - bounds_[0], bounds_[3] - bounds_[1]);
  std::array<double, levelCount> cells{};
  for (int i = 0; i < levelCount; ++i)
    cells[static_cast<std::size_t>(i)] = std::max(
        *middle / cellsPerTypicalTriangle * std::pow(levelGrowth, i - levelsBelowTypical), whole * 1e-9);
  cells.back() = std::max(cells.back(), whole);

  // Beginning and end of a triangle may both lie in the midst of a cell, so it may reach over one cell more.
  std::vector<std::uint8_t> levelOf(triangles_.size());
  for (std::size_t i = 0; i < triangles_.size(); ++i)
    levelOf[i] = static_cast<std::uint8_t>(
        std::find_if(cells.begin(), cells.end() - 1,
                     [&](double cell) { return extents[i] <= cell * (cellsPerSide - 1.01); }) -
        cells.begin());
  makeLevels(levelOf, cells);

  // Count, add up, fill: the starts first hold the ends, and filling moves each back to its beginning.
  for (std::size_t i = 0; i < triangles_.size(); ++i)
    visitCells(triangles_[i], levels_[levelOf[i]], [&](std::uint64_t place) { ++placeStarts_[place]; });
  std::uint32_t total = 0;
  for (std::uint32_t& start : placeStarts_) start = total += start;
  entries_.resize(total);
  for (std::size_t i = triangles_.size(); i-- > 0;)
    visitCells(triangles_[i], levels_[levelOf[i]],
               [&](std::uint64_t place) { entries_[--placeStarts_[place]] = static_cast<std::uint32_t>(i); });
  std::erase_if(levels_, [](const Level& level) { return level.places == 0; });
  for (const Level& level : levels_) crowding_ += fullestPlace(level);
}

std::size_t Surface::fullestPlace(const Level& level) const {
  std::uint32_t most = 0;
  for (std::uint64_t place = level.firstPlace; place < level.firstPlace + level.places; ++place)
    most = std::max(most, placeStarts_[place + 1] - placeStarts_[place]);
  return most;
}

bool Surface::heightAt(const Triangle& t, double x, double y, double& height) const {
  if (x < t.ax - rounding_ || x > t.cx + rounding_) return false;
  // The three areas that the point cuts the triangle into, signed by the way the corners turn.
  double a = side(t.bx, t.by, t.cx, t.cy, x, y);
  double b = -side(t.ax, t.ay, t.cx, t.cy, x, y);
  double c = side(t.ax, t.ay, t.bx, t.by, x, y);
  if (a + b + c < 0) {
    a = -a;
    b = -b;
    c = -c;
  }
  if (a < -rounding_ * (t.cx - t.bx + std::abs(t.cy - t.by)) ||
      b < -rounding_ * (t.cx - t.ax + std::abs(t.cy - t.ay)) ||
      c < -rounding_ * (t.bx - t.ax + std::abs(t.by - t.ay)))
    return false;
  a = std::max(a, 0.0);
  b = std::max(b, 0.0);
  c = std::max(c, 0.0);
  height = t.az + (b * (t.bz - t.az) + c * (t.cz - t.az)) / (a + b + c);
  return true;
}

std::uint64_t Surface::placeAt(const Level& level, double x, double y) const {
  return level.placeOf(cellIndex(x - bounds_[0], level.perCell, level.columns),
                       cellIndex(y - bounds_[1], level.perCell, level.rows));
}

/// Takes into `best`, NaN at first, the smallest distance to the sheets of one place.
void Surface::searchPlace(std::uint64_t place, double x, double y, double z, double& best) const {
  for (std::uint32_t i = placeStarts_[place]; i < placeStarts_[place + 1]; ++i) {
    double height = 0;
    if (!heightAt(triangles_[entries_[i]], x, y, height)) continue;
    if (!(std::abs(z - height) >= std::abs(best))) best = z - height;
  }
}

double Surface::verticalDistance(double x, double y, double z) const {
  double best = 0;
  verticalDistances({&x, 1}, {&y, 1}, {&z, 1}, {&best, 1});
  return best;
}

void Surface::verticalDistances(std::span<const double> x, std::span<const double> y,
                                std::span<const double> z, std::span<double> out) const {
  std::fill(out.begin(), out.end(), std::numeric_limits<double>::quiet_NaN());
  if (triangles_.empty()) return;
  // As many as a core has requests to memory under way.
  constexpr std::size_t ahead = 32;
  std::array<std::uint64_t, ahead> places{};
  std::array<std::size_t, ahead> asked{};
  for (std::size_t start = 0; start < out.size(); start += ahead) {
    std::size_t count = 0;
    for (std::size_t i = start; i < std::min(start + ahead, out.size()); ++i)
      if (x[i] >= bounds_[0] - rounding_ && x[i] <= bounds_[2] + rounding_ &&
          y[i] >= bounds_[1] - rounding_ && y[i] <= bounds_[3] + rounding_)
        asked[count++] = i;
    for (const Level& level : levels_) {
      for (std::size_t k = 0; k < count; ++k) {
        places[k] = placeAt(level, x[asked[k]], y[asked[k]]);
        __builtin_prefetch(&placeStarts_[places[k]]);
      }
      for (std::size_t k = 0; k < count; ++k) __builtin_prefetch(entries_.data() + placeStarts_[places[k]]);
      for (std::size_t k = 0; k < count; ++k)
        for (std::uint32_t i = placeStarts_[places[k]]; i < placeStarts_[places[k] + 1]; ++i) {
          const Triangle* triangle = &triangles_[entries_[i]];
          __builtin_prefetch(triangle);
          __builtin_prefetch(&triangle->cz);
        }
      for (std::size_t k = 0; k < count; ++k)
        searchPlace(places[k], x[asked[k]], y[asked[k]], z[asked[k]], out[asked[k]]);
    }
  }
}

} // namespace Zamt::Host
