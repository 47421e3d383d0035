#include "host/filters/DirectionFilter.h"

#include "host/filters/FieldLookup.h"

#include <array>
#include <cmath>
#include <numbers>
#include <optional>

namespace Zamt::Host {
namespace {

struct Normal {
  std::array<const Field*, 3> fields{};
  std::array<unsigned, 3> components{};
};

/// Where squares of sines decide without doubt. Between the two the angle itself is worked out, so that a
/// normal at exactly the tolerance is kept.
constexpr double sineMargin = 1e-9;

class DirectionFilter : public PointFilter {
public:
  DirectionFilter(const Normal& normal, double toleranceDegrees)
      : normal_(normal), tolerance_(toleranceDegrees) {
    const double sine = std::sin(std::min(tolerance_, 90.0) * std::numbers::pi / 180);
    surelyIn_ = sine * sine * (1 - sineMargin);
    surelyOut_ = sine * sine * (1 + sineMargin);
  }

  void test(BlockReader& block, std::span<const std::uint32_t> indices,
            std::span<std::uint8_t> holds) const override {
    forEachPiece(
        indices, holds, [&](std::span<const std::uint32_t> piece, std::span<std::uint8_t> pieceHolds) {
          std::array<PieceValues, 3> n;
          for (std::size_t axis = 0; axis < 3; ++axis)
            gatherPiece(block.column(*normal_.fields[axis], normal_.components[axis]), piece, n[axis]);
          for (std::size_t i = 0; i < piece.size(); ++i)
            pieceHolds[i] = isNearHorizontal(n[0][i], n[1][i], n[2][i]) ? 1 : 0;
        });
  }

  void listColumns(const PointCloud& cloud, std::vector<ColumnKey>& columns) const override {
    for (std::size_t axis = 0; axis < 3; ++axis)
      columns.push_back(cloud.keyOf(*normal_.fields[axis], normal_.components[axis]));
  }

private:
  bool isNearHorizontal(double x, double y, double z) const {
    const double rise = z * z;
    const double length = x * x + y * y + rise;
    // Squares of very short or very long normals leave the range of doubles; those go the slow way.
    if (std::isnormal(length)) {
      if (rise < surelyIn_ * length) return true;
      if (rise > surelyOut_ * length) return false;
    }
    if (!std::isfinite(x) || !std::isfinite(y) || !std::isfinite(z)) return false;
    if (x == 0 && y == 0 && z == 0) return false;
    return std::atan2(std::fabs(z), std::hypot(x, y)) * 180 / std::numbers::pi <= tolerance_;
  }

  Normal normal_;
  double tolerance_;
  double surelyIn_ = 0;
  double surelyOut_ = 0;
};

std::optional<Normal> findNormal(const PointCloud& cloud, std::string_view name) {
  const Field* whole = cloud.findField(name);
  if (whole != nullptr && whole->components == 3) return Normal{{whole, whole, whole}, {0, 1, 2}};
  Normal normal;
  for (std::size_t axis = 0; axis < 3; ++axis) {
    normal.fields[axis] = cloud.findField(std::string(name) + "XYZ"[axis]);
    if (normal.fields[axis] == nullptr) return std::nullopt;
  }
  return normal;
}

} // namespace

std::shared_ptr<const PointFilter> makeDirectionFilter(const PointCloud& cloud, std::string_view fieldName,
                                                       double tolerance, std::string& problem) {
  const std::optional<Normal> normal = findNormal(cloud, fieldName);
  if (!normal) {
    const std::string name(fieldName);
    problem = "There is no field called \"" + name + "\" with three components, nor fields called \"" + name +
              "X\", \"" + name + "Y\" and \"" + name + "Z\"; this cloud has " + fieldNames(cloud) +
              ". Compute the normals first, or name the field that holds them.";
    return nullptr;
  }
  if (!(tolerance >= 0)) {
    problem = "The tolerance of a direction is an angle in degrees. Give 0 or more.";
    return nullptr;
  }
  return std::make_shared<DirectionFilter>(*normal, tolerance);
}

} // namespace Zamt::Host
