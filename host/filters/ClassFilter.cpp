#include "host/filters/ClassFilter.h"

#include "host/filters/FieldLookup.h"

#include <algorithm>
#include <array>
#include <vector>

namespace Zamt::Host {
namespace {

class ClassFilter : public PointFilter {
public:
  ClassFilter(const PointCloud& pointCloud, const Field& classField, std::span<const std::int64_t> classes)
      : cloud(pointCloud), field(classField) {
    for (const std::int64_t number : classes) {
      if (number >= 0 && number < static_cast<std::int64_t>(listed.size()))
        listed[static_cast<std::size_t>(number)] = 1;
      else
        others.push_back(static_cast<double>(number));
    }
    std::sort(others.begin(), others.end());
  }

  void test(std::uint64_t first, std::span<const std::uint32_t> indices,
            std::span<std::uint8_t> holds) const override {
    forEachPiece(indices, holds,
                 [&](std::span<const std::uint32_t> piece, std::span<std::uint8_t> pieceHolds) {
                   std::array<double, gatherPoints> values;
                   cloud.gather(field, 0, first, piece, std::span(values).first(piece.size()));
                   for (std::size_t i = 0; i < piece.size(); ++i) pieceHolds[i] = isListed(values[i]);
                 });
  }

private:
  std::uint8_t isListed(double value) const {
    if (value >= 0 && value < static_cast<double>(listed.size())) {
      const auto number = static_cast<std::uint32_t>(value);
      return static_cast<double>(number) == value ? listed[number] : std::uint8_t{0};
    }
    return !others.empty() && std::binary_search(others.begin(), others.end(), value) ? 1 : 0;
  }

  const PointCloud& cloud;
  const Field& field;
  std::array<std::uint8_t, 256> listed{};
  std::vector<double> others; // Listed numbers that no LAS class has, for class fields of other types.
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
  return std::make_shared<ClassFilter>(cloud, *field, classes);
}

} // namespace Zamt::Host
