#include "host/filters/ClassFilter.h"

#include "host/filters/FieldLookup.h"

#include <algorithm>
#include <array>
#include <vector>

namespace Zamt::Host {
namespace {

class ClassFilter : public PointFilter {
public:
  ClassFilter(const Field& classField, std::span<const std::int64_t> classes) : field_(classField) {
    for (const std::int64_t number : classes) {
      if (number >= 0 && number < static_cast<std::int64_t>(listed_.size()))
        listed_[static_cast<std::size_t>(number)] = 1;
      else
        others_.push_back(static_cast<double>(number));
    }
    std::sort(others_.begin(), others_.end());
  }

  void test(BlockReader& block, std::span<const std::uint32_t> indices,
            std::span<std::uint8_t> holds) const override {
    const Column classes = block.column(field_);
    forEachPiece(indices, holds,
                 [&](std::span<const std::uint32_t> piece, std::span<std::uint8_t> pieceHolds) {
                   PieceValues room;
                   const std::span<const double> values = gatherPiece(classes, piece, room);
                   for (std::size_t i = 0; i < piece.size(); ++i) pieceHolds[i] = isListed(values[i]);
                 });
  }

  void listColumns(const PointCloud& cloud, std::vector<ColumnKey>& columns) const override {
    columns.push_back(cloud.keyOf(field_));
  }

private:
  std::uint8_t isListed(double value) const {
    if (value >= 0 && value < static_cast<double>(listed_.size())) {
      const auto number = static_cast<std::uint32_t>(value);
      return static_cast<double>(number) == value ? listed_[number] : std::uint8_t{0};
    }
    return !others_.empty() && std::binary_search(others_.begin(), others_.end(), value) ? 1 : 0;
  }

  const Field& field_;
  std::array<std::uint8_t, 256> listed_{};
  std::vector<double> others_; ///< Listed numbers that no class has, for class fields of other types.
};

} // namespace

std::shared_ptr<const PointFilter> makeClassFilter(const PointCloud& cloud, std::string_view fieldName,
                                                   std::span<const std::int64_t> classes,
                                                   std::string& problem) {
  const Field* field = lookUpField(cloud, fieldName, problem);
  if (field == nullptr) return nullptr;
  if (field->type == FieldType::F32 || field->type == FieldType::F64) {
    problem = "The field \"" + field->name +
              "\" holds fractions, not class numbers. Name a field of whole numbers, such as "
              "\"Classification\".";
    return nullptr;
  }
  return std::make_shared<ClassFilter>(*field, classes);
}

} // namespace Zamt::Host
