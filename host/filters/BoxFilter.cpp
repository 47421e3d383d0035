#include "host/filters/BoxFilter.h"

#include "host/filters/FieldLookup.h"

#include <array>
#include <cmath>

namespace Zamt::Host {
namespace {

using AxisFields = std::array<const Field*, 3>;

class BoxFilter : public PointFilter {
public:
  BoxFilter(const PointCloud& pointCloud, const AxisFields& axisFields, const Bounds& bounds)
      : cloud(pointCloud), fields(axisFields), box(bounds) {}

  void test(std::uint64_t first, std::span<const std::uint32_t> indices,
            std::span<std::uint8_t> holds) const override {
    forEachPiece(indices, holds,
                 [&](std::span<const std::uint32_t> piece, std::span<std::uint8_t> pieceHolds) {
                   testPiece(first, piece, pieceHolds);
                 });
  }

  Coverage coverage(std::uint64_t first) const override {
    const Bounds block = cloud.blockBounds(first);
    bool whole = true;
    for (std::size_t axis = 0; axis < 3; ++axis) {
      if (block.high[axis] < box.low[axis] || block.low[axis] > box.high[axis]) return Coverage::None;
      whole = whole && block.low[axis] >= box.low[axis] && block.high[axis] <= box.high[axis];
    }
    return whole ? Coverage::All : Coverage::Some;
  }

private:
  void testPiece(std::uint64_t first, std::span<const std::uint32_t> piece,
                 std::span<std::uint8_t> holds) const {
    std::array<double, gatherPoints> values;
    for (std::size_t axis = 0; axis < 3; ++axis) {
      cloud.gather(*fields[axis], 0, first, piece, std::span(values).first(piece.size()));
      const double low = box.low[axis];
      const double high = box.high[axis];
      unsigned any = 0;
      for (std::size_t i = 0; i < piece.size(); ++i) {
        const unsigned within =
            static_cast<unsigned>(values[i] >= low) & static_cast<unsigned>(values[i] <= high);
        const unsigned kept = axis == 0 ? within : within & holds[i];
        holds[i] = static_cast<std::uint8_t>(kept);
        any |= kept;
      }
      if (any == 0) return;
    }
  }

  const PointCloud& cloud;
  AxisFields fields;
  Bounds box;
};

} // namespace

std::shared_ptr<const PointFilter> makeBoxFilter(const PointCloud& cloud, const Bounds& box,
                                                 std::string& problem) {
  for (std::size_t axis = 0; axis < 3; ++axis)
    if (std::isnan(box.low[axis]) || std::isnan(box.high[axis])) {
      problem = "A box needs a number at each of its ends.";
      return nullptr;
    }
  AxisFields fields{};
  for (std::size_t axis = 0; axis < 3; ++axis) {
    fields[axis] = lookUpField(cloud, std::string(1, "XYZ"[axis]), problem);
    if (fields[axis] == nullptr) return nullptr;
  }
  return std::make_shared<BoxFilter>(cloud, fields, box);
}

} // namespace Zamt::Host
