#include "host/filters/BoxFilter.h"

#include "host/filters/FieldLookup.h"

#include <cmath>

namespace Zamt::Host {
namespace {

class BoxFilter : public PointFilter {
public:
  explicit BoxFilter(const Bounds& box) : box_(box) {}

  void test(BlockReader& block, std::span<const std::uint32_t> indices,
            std::span<std::uint8_t> holds) const override {
    forEachPiece(indices, holds,
                 [&](std::span<const std::uint32_t> piece, std::span<std::uint8_t> pieceHolds) {
                   testPiece(block, piece, pieceHolds);
                 });
  }

  void listColumns(const PointCloud& /*cloud*/, std::vector<ColumnKey>& columns) const override {
    columns.insert(columns.end(), axisColumns.begin(), axisColumns.end());
  }

  Coverage coverage(BlockReader& block) const override {
    const Bounds bounds = block.bounds();
    bool whole = true;
    for (std::size_t axis = 0; axis < 3; ++axis) {
      if (bounds.high[axis] < box_.low[axis] || bounds.low[axis] > box_.high[axis]) return Coverage::None;
      whole = whole && bounds.low[axis] >= box_.low[axis] && bounds.high[axis] <= box_.high[axis];
    }
    return whole ? Coverage::All : Coverage::Some;
  }

private:
  void testPiece(BlockReader& block, std::span<const std::uint32_t> piece,
                 std::span<std::uint8_t> holds) const {
    PieceValues room;
    for (std::size_t axis = 0; axis < 3; ++axis) {
      const std::span<const double> values = gatherPiece(block.axis(axis), piece, room);
      const double low = box_.low[axis];
      const double high = box_.high[axis];
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

  Bounds box_;
};

} // namespace

std::shared_ptr<const PointFilter> makeBoxFilter(const Bounds& box, std::string& problem) {
  for (std::size_t axis = 0; axis < 3; ++axis)
    if (std::isnan(box.low[axis]) || std::isnan(box.high[axis])) {
      problem = "A box needs a number at each of its ends.";
      return nullptr;
    }
  return std::make_shared<BoxFilter>(box);
}

} // namespace Zamt::Host
