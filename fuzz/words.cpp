#include "fuzz/require.h"
#include "host/filters/expression/Expression.h"
#include "host/regions/Region.h"

#include <array>
#include <cstdint>

using namespace Zamt::Host;
using Zamt::Fuzz::require;
using Zamt::Fuzz::requireSentence;

namespace {

void tryExpression(std::string_view text) {
  const std::array<ExpressionName, 3> names{{{"X", 1}, {"Normal", 3}, {"odd name", 1}}};
  std::string problem;
  const auto expression = Expression::compile(text, names, problem);
  if (!expression) return requireSentence(problem);
  const std::array<double, 2> values{-1.5, 1e300};
  const std::size_t length = std::min(values.size(), expression->columnLength());
  const std::vector<std::span<const double>> columns(expression->inputs().size(),
                                                     std::span(values).first(length));
  std::vector<double> scratch;
  std::array<double, 2> out{};
  expression->evaluate(columns, scratch, std::span(out).first(length));
}

void tryRegion(std::string_view text) {
  Region region;
  std::string problem;
  if (!parseRegion(text, region, problem)) return requireSentence(problem);
  require(!region.polygons.empty() || !region.box.empty(), "a region that was read is one");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  tryExpression(text);
  tryRegion(text);
  return 0;
}
