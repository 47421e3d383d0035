#include "host/filters/SphereFilter.h"

#include "host/filters/FieldLookup.h"

#include <algorithm>
#include <cmath>

namespace Zamt::Host {
namespace {

/// A block is judged whole only when its nearest or farthest corner is clear of the surface by this part of
/// the squared radius, so that rounding never decides differently for a block than for its points.
constexpr double surfaceMargin = 1e-9;

class SphereFilter : public PointFilter {
public:
  SphereFilter(const std::array<double, 3>& centre, double radius)
      : centre_(centre), radiusSquared_(radius * radius) {}

  void test(BlockReader& block, std::span<const std::uint32_t> indices,
            std::span<std::uint8_t> holds) const override {
    forEachPiece(indices, holds,
                 [&](std::span<const std::uint32_t> piece, std::span<std::uint8_t> pieceHolds) {
                   std::array<PieceValues, 3> p;
                   for (std::size_t axis = 0; axis < 3; ++axis) gatherPiece(block.axis(axis), piece, p[axis]);
                   for (std::size_t i = 0; i < piece.size(); ++i) {
                     const double dx = p[0][i] - centre_[0];
                     const double dy = p[1][i] - centre_[1];
                     const double dz = p[2][i] - centre_[2];
                     pieceHolds[i] = dx * dx + dy * dy + dz * dz <= radiusSquared_ ? 1 : 0;
                   }
                 });
  }

  void listColumns(const PointCloud& /*cloud*/, std::vector<ColumnKey>& columns) const override {
    columns.insert(columns.end(), axisColumns.begin(), axisColumns.end());
  }

  Coverage coverage(BlockReader& block) const override {
    const Bounds bounds = block.bounds();
    double nearest = 0;
    double farthest = 0;
    for (std::size_t axis = 0; axis < 3; ++axis) {
      const double below = bounds.low[axis] - centre_[axis];
      const double above = centre_[axis] - bounds.high[axis];
      const double gap = std::max({below, above, 0.0});
      const double reach = std::max(-below, -above);
      nearest += gap * gap;
      farthest += reach * reach;
    }
    if (nearest > radiusSquared_ * (1 + surfaceMargin)) return Coverage::None;
    if (farthest < radiusSquared_ * (1 - surfaceMargin)) return Coverage::All;
    return Coverage::Some;
  }

private:
  std::array<double, 3> centre_;
  double radiusSquared_;
};

} // namespace

std::shared_ptr<const PointFilter> makeSphereFilter(const std::array<double, 3>& centre, double radius,
                                                    std::string& problem) {
  if (!std::all_of(centre.begin(), centre.end(), [](double value) { return std::isfinite(value); })) {
    problem = "The centre of a ball needs three numbers, x, y and z.";
    return nullptr;
  }
  if (!(radius >= 0)) {
    problem = "The radius of a ball is a distance. Give 0 or more.";
    return nullptr;
  }
  return std::make_shared<SphereFilter>(centre, radius);
}

} // namespace Zamt::Host
