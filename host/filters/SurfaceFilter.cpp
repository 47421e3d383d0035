#include "host/filters/SurfaceFilter.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <utility>
#include <vector>

namespace Zamt::Host {

namespace {

class SurfaceFilter : public PointFilter {
public:
  SurfaceFilter(const PointCloud& points, std::array<const Field*, 3> fields,
                std::shared_ptr<const Surface> over, bool isAbove, double distance)
      : cloud(points), axes(fields), surface(std::move(over)), above(isAbove), margin(distance) {}

  void test(std::uint64_t first, std::span<const std::uint32_t> indices,
            std::span<std::uint8_t> holds) const override {
    // Small enough for the columns to stay in the nearest cache while the index is walked.
    constexpr std::size_t tile = 1024;
    std::array<std::array<double, tile>, 3> columns;
    for (std::size_t start = 0; start < indices.size(); start += tile) {
      const auto part = indices.subspan(start, std::min(tile, indices.size() - start));
      for (std::size_t axis = 0; axis < 3; ++axis)
        cloud.gather(*axes[axis], 0, first, part, std::span(columns[axis]).first(part.size()));
      std::array<double, tile> distances;
      const std::span<double> found = std::span(distances).first(part.size());
      surface->verticalDistances(columns[0], columns[1], columns[2], found);
      std::transform(found.begin(), found.end(), holds.begin() + static_cast<std::ptrdiff_t>(start),
                     [this](double distance) { return matches(distance); });
    }
  }

  Coverage coverage(std::uint64_t first) const override {
    if (surface->size() == 0) return Coverage::None;
    const Bounds box = cloud.blockBounds(first);
    const auto& plan = surface->planBounds();
    const bool misses = box.empty() || box.high[0] < plan[0] - onSurfaceDistance ||
                        box.high[1] < plan[1] - onSurfaceDistance ||
                        box.low[0] > plan[2] + onSurfaceDistance || box.low[1] > plan[3] + onSurfaceDistance;
    return misses ? Coverage::None : Coverage::Some;
  }

private:
  /// NaN, where there is no surface, compares false.
  std::uint8_t matches(double distance) const {
    if (std::abs(distance) <= onSurfaceDistance) distance = 0;
    return (above ? distance : -distance) > margin ? 1 : 0;
  }

  const PointCloud& cloud;
  std::array<const Field*, 3> axes;
  std::shared_ptr<const Surface> surface;
  bool above;
  double margin;
};

} // namespace

std::shared_ptr<const PointFilter> makeSurfaceFilter(const PointCloud& cloud,
                                                     std::shared_ptr<const Surface> surface, bool above,
                                                     double margin, std::string& problem) {
  const std::array<const Field*, 3> axes{cloud.findField("X"), cloud.findField("Y"), cloud.findField("Z")};
  if (!surface || !axes[0] || !axes[1] || !axes[2]) {
    problem = "Points can only be compared with a surface when both are there; load them first.";
    return nullptr;
  }
  if (std::isnan(margin)) {
    problem = "The margin of a surface must be a number; give a distance such as 0.2.";
    return nullptr;
  }
  return std::make_shared<SurfaceFilter>(cloud, axes, std::move(surface), above, margin);
}

} // namespace Zamt::Host
