#pragma once

#include <array>
#include <span>

namespace Zamt::Host {

/// Something that has a height at places in plan. Never changes once made, so any number of threads may ask
/// at once.
class HeightModel {
public:
  virtual ~HeightModel() = default;

  /// Writes, for each place of `out`, z minus the height there, in world units; NaN where there is no height.
  virtual void verticalDistances(std::span<const double> x, std::span<const double> y,
                                 std::span<const double> z, std::span<double> out) const = 0;

  /// The box in plan outside of which there are no heights: lowest x and y, highest x and y.
  virtual const std::array<double, 4>& planBounds() const = 0;
};

} // namespace Zamt::Host
