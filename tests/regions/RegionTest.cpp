#include "host/regions/Region.h"

#include "tests/support/goldenCases.h"

namespace Zamt::Host {
namespace {

std::string textOf(const auto& numbers) {
  std::ostringstream text;
  for (const double number : numbers) text << number << ' ';
  return text.str();
}

/// The corners of the box, and a line for each ring of each polygon.
std::string regionOf(const std::string& text) {
  Region region;
  std::string problem;
  if (!parseRegion(text, region, problem)) return problem;
  if (region.polygons.empty()) return textOf(region.box.low) + ".. " + textOf(region.box.high);
  std::string rings;
  for (const Polygon& polygon : region.polygons) {
    rings += "polygon\n";
    for (const Ring& ring : polygon.rings) {
      rings += "ring ";
      for (const auto& corner : ring) rings += "- " + textOf(corner);
      rings += '\n';
    }
  }
  return rings;
}

TEST(Region, IsReadOrRefusedAsInTheGoldenDocument) {
  Testing::expectCases("regions/golden/regions.md", regionOf);
}

TEST(Region, PositionsAreReadOrRefusedAsInTheGoldenDocument) {
  Testing::expectCases("regions/golden/positions.md", [](const std::string& text) {
    std::array<double, 3> position{};
    std::string problem;
    return parseVector(text, position, problem) ? textOf(position) : problem;
  });
}

TEST(Region, NestingOfAnyDepthNeitherOverflowsNorHangs) {
  constexpr std::size_t deep = 1000000;
  const std::string open(deep, '(');
  const std::string close(deep, ')');
  Region region;
  std::string problem;
  EXPECT_TRUE(parseRegion(open + "1 2 3 4" + close, region, problem)) << problem;
  EXPECT_FALSE(parseRegion(open + "1 2 3 4", region, problem));
  EXPECT_FALSE(parseRegion("POLYGON " + open, region, problem));
  const std::string list = R"({"type":"Polygon","coordinates":)" + std::string(deep, '[');
  EXPECT_FALSE(parseRegion(list, region, problem));
  EXPECT_FALSE(parseRegion(list + std::string(deep, ']') + "}", region, problem));
}

} // namespace
} // namespace Zamt::Host
