#include "host/filters/ExpressionFilter.h"

#include "host/filters/Expression.h"

#include <algorithm>
#include <utility>
#include <vector>

namespace Zamt::Host {

namespace {

class ExpressionFilter : public PointFilter {
public:
  ExpressionFilter(const PointCloud& points, Expression compiled)
      : cloud(points), expression(std::move(compiled)) {}

  void test(std::uint64_t first, std::span<const std::uint32_t> indices,
            std::span<std::uint8_t> holds) const override {
    const std::size_t tile = expression.columnLength();
    const auto& inputs = expression.inputs();
    std::vector<double> values((inputs.size() + 1) * tile);
    std::vector<std::span<const double>> columns(inputs.size());
    std::vector<double> scratch;
    for (std::size_t start = 0; start < indices.size(); start += tile) {
      const auto part = indices.subspan(start, std::min(tile, indices.size() - start));
      for (std::size_t i = 0; i < inputs.size(); ++i) {
        const std::span<double> column(values.data() + i * tile, part.size());
        cloud.gather(cloud.fields()[inputs[i].name], inputs[i].component, first, part, column);
        columns[i] = column;
      }
      const std::span<double> result(values.data() + inputs.size() * tile, part.size());
      expression.evaluate(columns, scratch, result);
      std::transform(result.begin(), result.end(), holds.begin() + static_cast<std::ptrdiff_t>(start),
                     [](double value) -> std::uint8_t { return value < 0 || value > 0 ? 1 : 0; });
    }
  }

private:
  const PointCloud& cloud;
  Expression expression;
};

} // namespace

std::shared_ptr<const PointFilter> makeExpressionFilter(const PointCloud& cloud, const std::string& text,
                                                        std::string& problem) {
  std::vector<ExpressionName> names;
  for (const Field& field : cloud.fields()) names.push_back({field.name, field.components});
  auto expression = Expression::compile(text, names, problem);
  if (!expression) return nullptr;
  return std::make_shared<ExpressionFilter>(cloud, std::move(*expression));
}

} // namespace Zamt::Host
