#include "host/filters/RangeFilter.h"

#include "host/filters/FieldLookup.h"

#include <cmath>
#include <limits>

namespace Zamt::Host {
namespace {

class RangeFilter : public PointFilter {
public:
  RangeFilter(const Field& field, unsigned component, double minimum, double maximum)
      : field_(field), component_(component), minimum_(minimum), maximum_(maximum) {}

  void test(BlockReader& block, std::span<const std::uint32_t> indices,
            std::span<std::uint8_t> holds) const override {
    const Column column = block.column(field_, component_);
    forEachPiece(indices, holds,
                 [&](std::span<const std::uint32_t> piece, std::span<std::uint8_t> pieceHolds) {
                   PieceValues room;
                   const std::span<const double> values = gatherPiece(column, piece, room);
                   for (std::size_t i = 0; i < piece.size(); ++i)
                     pieceHolds[i] = static_cast<std::uint8_t>(static_cast<unsigned>(values[i] >= minimum_) &
                                                               static_cast<unsigned>(values[i] <= maximum_));
                 });
  }

  void listColumns(const PointCloud& cloud, std::vector<ColumnKey>& columns) const override {
    columns.push_back(cloud.keyOf(field_, component_));
  }

private:
  const Field& field_;
  unsigned component_;
  double minimum_;
  double maximum_;
};

std::string componentProblem(const Field& field) {
  if (field.components == 1)
    return "The field \"" + field.name + "\" has one value per point. Leave the component out, or give 0.";
  return "The field \"" + field.name + "\" has " + std::to_string(field.components) +
         " components. Give a whole number from 0 to " + std::to_string(field.components - 1) + ".";
}

} // namespace

std::shared_ptr<const PointFilter> makeRangeFilter(const PointCloud& cloud, std::string_view fieldName,
                                                   double component, double minimum, double maximum,
                                                   std::string& problem) {
  const Field* field = lookUpField(cloud, fieldName, problem);
  if (field == nullptr) return nullptr;
  if (!(component >= 0 && component < field->components) || component != std::floor(component)) {
    problem = componentProblem(*field);
    return nullptr;
  }
  if (std::isnan(minimum) || std::isnan(maximum)) {
    problem = "The range of \"" + field->name + "\" needs a number at both ends.";
    return nullptr;
  }
  constexpr double infinity = std::numeric_limits<double>::infinity();
  return std::make_shared<RangeFilter>(*field, static_cast<unsigned>(component),
                                       minimum <= -unlimitedValue ? -infinity : minimum,
                                       maximum >= unlimitedValue ? infinity : maximum);
}

} // namespace Zamt::Host
