#include "host/filters/ExpressionFilter.h"

#include "host/filters/expression/Expression.h"

#include <algorithm>
#include <utility>
#include <vector>

namespace Zamt::Host {

namespace {

class ExpressionFilter : public PointFilter {
public:
  explicit ExpressionFilter(Expression expression) : expression_(std::move(expression)) {}

  void test(BlockReader& block, std::span<const std::uint32_t> indices,
            std::span<std::uint8_t> holds) const override {
    const std::size_t tile = std::min(expression_.columnLength(), indices.size());
    const auto& inputs = expression_.inputs();
    const std::vector<Field>& fields = block.cloud().fields();
    std::vector<double> values((inputs.size() + 1) * tile);
    std::vector<std::span<const double>> columns(inputs.size());
    std::vector<double> scratch;
    for (std::size_t start = 0; start < indices.size(); start += tile) {
      const auto part = indices.subspan(start, std::min(tile, indices.size() - start));
      for (std::size_t i = 0; i < inputs.size(); ++i) {
        const std::span<double> column(values.data() + i * tile, part.size());
        block.column(fields[inputs[i].name], inputs[i].component).gather(part, column);
        columns[i] = column;
      }
      const std::span<double> result(values.data() + inputs.size() * tile, part.size());
      expression_.evaluate(columns, scratch, result);
      std::transform(result.begin(), result.end(), holds.begin() + static_cast<std::ptrdiff_t>(start),
                     [](double value) -> std::uint8_t { return value < 0 || value > 0 ? 1 : 0; });
    }
  }

  void listColumns(const PointCloud& /*cloud*/, std::vector<ColumnKey>& columns) const override {
    for (const ExpressionInput& input : expression_.inputs())
      columns.push_back({input.name, input.component});
  }

private:
  Expression expression_;
};

} // namespace

std::shared_ptr<const PointFilter> makeExpressionFilter(const PointCloud& cloud, const std::string& text,
                                                        std::string& problem) {
  std::vector<ExpressionName> names;
  for (const Field& field : cloud.fields()) names.push_back({field.name, field.components});
  auto expression = Expression::compile(text, names, problem);
  if (!expression) return nullptr;
  return std::make_shared<ExpressionFilter>(std::move(*expression));
}

} // namespace Zamt::Host
