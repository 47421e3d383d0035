#include "host/filters/SphereFilter.h"

#include "host/filters/FieldLookup.h"

#include <algorithm>
#include <cmath>

namespace Zamt::Host {
namespace {

using AxisFields = std::array<const Field*, 3>;

// A block is judged whole only when its nearest or farthest corner is clear of the surface by this part of
// the squared radius, so that rounding never decides differently for a block than for its points.
constexpr double surfaceMargin = 1e-9;

class SphereFilter : public PointFilter {
public:
  SphereFilter(const PointCloud& pointCloud, const AxisFields& axisFields,
               const std::array<double, 3>& middle, double radius)
      : cloud(pointCloud), fields(axisFields), centre(middle), radiusSquared(radius * radius) {}

  void test(std::uint64_t first, std::span<const std::uint32_t> indices,
            std::span<std::uint8_t> holds) const override {
    forEachPiece(indices, holds,
                 [&](std::span<const std::uint32_t> piece, std::span<std::uint8_t> pieceHolds) {
                   std::array<std::array<double, gatherPoints>, 3> p;
                   for (std::size_t axis = 0; axis < 3; ++axis)
                     cloud.gather(*fields[axis], 0, first, piece, std::span(p[axis]).first(piece.size()));
                   for (std::size_t i = 0; i < piece.size(); ++i) {
                     const double dx = p[0][i] - centre[0];
                     const double dy = p[1][i] - centre[1];
                     const double dz = p[2][i] - centre[2];
                     pieceHolds[i] = dx * dx + dy * dy + dz * dz <= radiusSquared ? 1 : 0;
                   }
                 });
  }

  Coverage coverage(std::uint64_t first) const override {
    const Bounds block = cloud.blockBounds(first);
    double nearest = 0;
    double farthest = 0;
    for (std::size_t axis = 0; axis < 3; ++axis) {
      const double below = block.low[axis] - centre[axis];
      const double above = centre[axis] - block.high[axis];
      const double gap = std::max({below, above, 0.0});
      const double reach = std::max(-below, -above);
      nearest += gap * gap;
      farthest += reach * reach;
    }
    if (nearest > radiusSquared * (1 + surfaceMargin)) return Coverage::None;
    if (farthest < radiusSquared * (1 - surfaceMargin)) return Coverage::All;
    return Coverage::Some;
  }

private:
  const PointCloud& cloud;
  AxisFields fields;
  std::array<double, 3> centre;
  double radiusSquared;
};

} // namespace

std::shared_ptr<const PointFilter> makeSphereFilter(const PointCloud& cloud,
                                                    const std::array<double, 3>& centre, double radius,
                                                    std::string& problem) {
  if (!std::all_of(centre.begin(), centre.end(), [](double value) { return std::isfinite(value); })) {
    problem = "The centre of a ball needs three numbers, x, y and z.";
    return nullptr;
  }
  if (!(radius >= 0)) {
    problem = "The radius of a ball is a distance. Give 0 or more.";
    return nullptr;
  }
  AxisFields fields{};
  for (std::size_t axis = 0; axis < 3; ++axis) {
    fields[axis] = lookUpField(cloud, std::string(1, "XYZ"[axis]), problem);
    if (fields[axis] == nullptr) return nullptr;
  }
  return std::make_shared<SphereFilter>(cloud, fields, centre, radius);
}

} // namespace Zamt::Host
