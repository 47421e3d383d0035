#pragma once

#include "host/surfaces/HeightModel.h"

#include <algorithm>
#include <limits>

namespace Zamt::Host {

/// One height everywhere.
class LevelSurface : public HeightModel {
public:
  explicit LevelSurface(double level) : level_(level) {}

  void verticalDistances(std::span<const double> /*x*/, std::span<const double> /*y*/,
                         std::span<const double> z, std::span<double> out) const override {
    std::ranges::transform(z.first(out.size()), out.begin(),
                           [this](double height) { return height - level_; });
  }

  const std::array<double, 4>& planBounds() const override {
    static constexpr double infinity = std::numeric_limits<double>::infinity();
    static constexpr std::array<double, 4> everywhere{-infinity, -infinity, infinity, infinity};
    return everywhere;
  }

private:
  double level_;
};

} // namespace Zamt::Host
