#include "host/filters/SurfaceFilter.h"

#include "host/filters/FieldLookup.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace Zamt::Host {

namespace {

class SurfaceFilter : public PointFilter {
public:
  SurfaceFilter(std::shared_ptr<const HeightModel> surface, bool above, double margin)
      : surface_(std::move(surface)), above_(above), margin_(margin) {}

  void test(BlockReader& block, std::span<const std::uint32_t> indices,
            std::span<std::uint8_t> holds) const override {
    forEachPiece(indices, holds,
                 [&](std::span<const std::uint32_t> piece, std::span<std::uint8_t> pieceHolds) {
                   std::array<PieceValues, 3> p;
                   for (std::size_t axis = 0; axis < 3; ++axis) gatherPiece(block.axis(axis), piece, p[axis]);
                   PieceValues distances;
                   const std::span<double> found = std::span(distances).first(piece.size());
                   surface_->verticalDistances(p[0], p[1], p[2], found);
                   std::ranges::transform(found, pieceHolds.begin(),
                                          [this](double distance) { return matches(distance); });
                 });
  }

  void listColumns(const PointCloud& /*cloud*/, std::vector<ColumnKey>& columns) const override {
    columns.insert(columns.end(), axisColumns.begin(), axisColumns.end());
  }

  Coverage coverage(BlockReader& block) const override {
    const Bounds box = block.bounds();
    const auto& plan = surface_->planBounds();
    const bool misses = box.empty() || box.high[0] < plan[0] - onSurfaceDistance ||
                        box.high[1] < plan[1] - onSurfaceDistance ||
                        box.low[0] > plan[2] + onSurfaceDistance || box.low[1] > plan[3] + onSurfaceDistance;
    return misses ? Coverage::None : Coverage::Some;
  }

private:
  /// NaN, where there is no surface, compares false.
  std::uint8_t matches(double distance) const {
    if (std::abs(distance) <= onSurfaceDistance) distance = 0;
    return (above_ ? distance : -distance) > margin_ ? 1 : 0;
  }

  std::shared_ptr<const HeightModel> surface_;
  bool above_;
  double margin_;
};

} // namespace

std::shared_ptr<const PointFilter> makeSurfaceFilter(std::shared_ptr<const HeightModel> surface, bool above,
                                                     double margin, std::string& problem) {
  if (std::isnan(margin)) {
    problem = "The margin of a surface must be a number; give a distance such as 0.2.";
    return nullptr;
  }
  return std::make_shared<SurfaceFilter>(std::move(surface), above, margin);
}

} // namespace Zamt::Host
