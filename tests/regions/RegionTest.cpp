#include "host/regions/Region.h"

#include <gmock/gmock.h>

#include <clocale>
#include <limits>
#include <string>

namespace Zamt::Host {
namespace {

Region read(const std::string& text) {
  Region region;
  std::string problem;
  EXPECT_TRUE(parseRegion(text, region, problem)) << text << ": " << problem;
  return region;
}

constexpr double infinity = std::numeric_limits<double>::infinity();

TEST(Region, ReadsBoxesInEveryNotation) {
  const Bounds whole{{1, 2, 3}, {4, 5, 6}};
  const std::pair<const char*, Bounds> cases[] = {
      {"1 2 3 4 5 6", whole},
      {"((1,2,3),(4,5,6))", whole},
      {"4 2 6 1 5 3", whole},
      {"+1 2e0 3.0 4 5 .6e1", whole},
      {"1 2 4 5", {{1, 2, -infinity}, {4, 5, infinity}}},
      {"((4, 5), (1, 2))", {{1, 2, -infinity}, {4, 5, infinity}}},
  };
  for (const auto& [text, box] : cases) {
    const Region region = read(text);
    EXPECT_EQ(region.box.low, box.low) << text;
    EXPECT_EQ(region.box.high, box.high) << text;
    EXPECT_TRUE(region.polygons.empty());
  }
}

TEST(Region, ReadsPolygonsOfWktAndGeoJson) {
  const Ring outer{{0, 0}, {9, 0}, {9, 9}, {0, 0}};
  const Ring hole{{1, 1}, {2, 1}, {2, 2}, {1, 1}};
  const std::pair<const char*, std::vector<std::vector<Ring>>> cases[] = {
      {"polygon((0 0,9 0,9 9,0 0),(1 1,2 1,2 2,1 1))", {{outer, hole}}},
      {"POLYGON Z ((0 0 5, 9 0 5, 9 9 5, 0 0 5))", {{outer}}},
      {"MULTIPOLYGON (((0 0, 9 0, 9 9, 0 0)), ((1 1, 2 1, 2 2, 1 1)))", {{outer}, {hole}}},
      {R"({"type":"Polygon","coordinates":[[[0,0],[9,0],[9,9],[0,0]],[[1,1],[2,1,7],[2,2],[1,1]]]})",
       {{outer, hole}}},
      {R"({"type":"MultiPolygon","coordinates":[[[[0,0],[9,0],[9,9],[0,0]]],[[[1,1],[2,1],[2,2],[1,1]]]]})",
       {{outer}, {hole}}},
      {R"({"type":"Feature","properties":{"a":[[]]},)"
       R"("geometry":{"type":"Polygon","coordinates":[[[0,0],[9,0],[9,9],[0,0]]]}})",
       {{outer}}},
      {R"({"type":"FeatureCollection","features":[{"type":"Feature",)"
       R"("geometry":{"type":"Polygon","coordinates":[[[0,0],[9,0],[9,9],[0,0]]]}},{"type":"Feature",)"
       R"("geometry":{"type":"Polygon","coordinates":[[[1,1],[2,1],[2,2],[1,1]]]}}]})",
       {{outer}, {hole}}},
  };
  for (const auto& [text, polygons] : cases) {
    std::vector<std::vector<Ring>> rings;
    for (const Polygon& polygon : read(text).polygons) rings.push_back(polygon.rings);
    EXPECT_EQ(rings, polygons) << text;
  }
}

TEST(Region, SaysWhatToWriteInsteadOfATextThatDoesNotRead) {
  const std::string hint = "Write two corners as six numbers (x0 y0 z0 x1 y1 z1), four numbers (x0 y0 x1 "
                           "y1), a WKT POLYGON or a GeoJSON Polygon.";
  const auto unread = [&](const std::string& text) {
    return "The region \"" + text + "\" can't be read. " + hint;
  };
  const std::string badPolygon = "The POLYGON can't be read. Write it as POLYGON ((x y, x y, x y, x y)), "
                                 "with at least three corners a ring; further rings are holes.";
  const std::string badJsonPolygon = "The coordinates of the region's GeoJSON Polygon can't be read. Each "
                                     "ring is a list of at least three corners [x, y].";
  const std::pair<std::string, std::string> cases[] = {
      {"", "The region is empty. " + hint},
      {" \n", "The region is empty. " + hint},
      {std::string(41, '1') + "x", unread(std::string(40, '1') + "...")},
      {"POLYGON ((0 0, 1 0, 0 0))", badPolygon},
      {"POLYGON ((0 0, 1 0, 1 1, 0 0)) x", badPolygon},
      {"MULTIPOLYGON ((0 0, 1 0, 1 1))", "The MULTIPOLYGON can't be read. Write it as MULTIPOLYGON (((x y, x "
                                         "y, x y, x y)), ...), with at least three corners a ring."},
      {"{", "The region \"{\" is not valid JSON. " + hint},
      {"{}",
       "The region's GeoJSON has a geometry without a type. Only Polygon and MultiPolygon can be used."},
      {R"({"type":"Point","coordinates":[1,2]})",
       "The region's GeoJSON holds a geometry of type \"Point\". Only Polygon and MultiPolygon can be used."},
      {R"({"type":"Polygon","coordinates":[]})", badJsonPolygon},
      {R"({"type":"Polygon","coordinates":[[[0,0],[1,"0"],[1,1]]]})", badJsonPolygon},
      {R"({"type":"Feature"})",
       "A feature of the region's GeoJSON has no geometry. Give it a Polygon or a MultiPolygon."},
      {R"({"type":"Feature","geometry":null})",
       "The region's GeoJSON has a geometry without a type. Only Polygon and MultiPolygon can be used."},
      {R"({"type":"FeatureCollection","features":[]})",
       "The region's GeoJSON FeatureCollection holds no features. Give it at least one Polygon."},
  };
  for (const auto& [text, said] : cases) {
    Region region;
    std::string problem;
    EXPECT_FALSE(parseRegion(text, region, problem)) << text;
    EXPECT_EQ(problem, said) << text;
  }
  for (const std::string text :
       {"1 2 3", "1 2 3 4 5 6 7", "1,,2,3,4", "1 2 3 4,", "(1 2 3 4", "1 2 3 4)", "()1 2 3 4", "1 2 3 1e999",
        "-inf 2 3 4", "+-1 2 3 4", "1;2;3;4", "tile", "LINESTRING (0 0, 1 1)"}) {
    Region region;
    std::string problem;
    EXPECT_FALSE(parseRegion(text, region, problem)) << text;
    EXPECT_EQ(problem, unread(text));
  }
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

TEST(Region, ReadsVectors) {
  std::array<double, 3> vector{};
  std::string problem;
  for (const char* text : {"1 2 -3.5", "1, 2, -3.5", "(1, 2, -3.5)"}) {
    vector = {};
    EXPECT_TRUE(parseVector(text, vector, problem)) << problem;
    EXPECT_THAT(vector, testing::ElementsAre(1, 2, -3.5)) << text;
  }
  for (const std::string text : {"((1), (2), +-3.5)", "1 2", "1 2 3 4"}) {
    EXPECT_FALSE(parseVector(text, vector, problem));
    EXPECT_EQ(problem,
              "The position \"" + text + "\" can't be read. Write three numbers, such as (1, 2, 3).");
  }
}

} // namespace
} // namespace Zamt::Host
