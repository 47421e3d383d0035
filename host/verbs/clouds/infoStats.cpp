#include "host/verbs/clouds/infoStats.h"

#include "host/verbs/texts.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <string>
#include <vector>

namespace Zamt::Host {

namespace {

using Rows = std::vector<std::vector<std::string>>;

/// A bar a count, the longest for the largest; the shortest for any that is not 0.
std::string barsText(const Histogram& histogram) {
  static constexpr std::array<const char*, 9> bars{" ", "▁", "▂", "▃", "▄", "▅", "▆", "▇", "█"};
  if (histogram.empty()) return "-";
  const std::uint64_t most = std::ranges::max(histogram.counts());
  std::string text;
  for (const std::uint64_t count : histogram.counts()) {
    const auto share = static_cast<double>(count) / static_cast<double>(most);
    text += bars[count == 0 ? 0 : std::max<std::size_t>(1, static_cast<std::size_t>(share * 8))];
  }
  return text;
}

std::string nameOf(const FieldStats& field, const CloudStats& stats) {
  const bool several = std::ranges::count(stats.fields, field.name, &FieldStats::name) > 1;
  return several ? fmt::format("{}[{}]", field.name, field.component) : field.name;
}

std::string shortNumber(double value) { return fmt::format("{:.9g}", value); }

std::vector<std::string> fieldRow(const FieldStats& field, const CloudStats& stats) {
  const std::string name = nameOf(field, stats);
  if (field.values == 0) return {name, "0", "-", "-", "-", "-", "-"};
  return {name,
          grouped(field.values),
          shortNumber(field.low),
          shortNumber(field.high),
          shortNumber(field.mean),
          shortNumber(field.deviation),
          barsText(field.histogram)};
}

double perCell(std::uint64_t points, const PointStats& stats) {
  return stats.cells == 0 ? 0 : static_cast<double>(points) / static_cast<double>(stats.cells);
}

std::string rangeText(const Bounds& bounds, std::size_t axis) {
  return fmt::format("{:.12g} .. {:.12g}", bounds.low[axis], bounds.high[axis]);
}

std::vector<std::string> pointsRow(const std::string& number, const std::string& name,
                                   const PointStats& points) {
  return {number,
          name.empty() ? "-" : name,
          grouped(points.points),
          fmt::format("{:.2f}", perCell(points.points, points)),
          fmt::format("{:.2f}", perCell(points.lastReturns, points)),
          rangeText(points.bounds, 0),
          rangeText(points.bounds, 1),
          rangeText(points.bounds, 2)};
}

Data fieldData(const FieldStats& field) {
  if (field.values == 0)
    return Fields{{"name", field.name}, {"component", field.component}, {"values", field.values}};
  return Fields{{"name", field.name},
                {"component", field.component},
                {"values", field.values},
                {"low", field.low},
                {"high", field.high},
                {"mean", field.mean},
                {"deviation", field.deviation},
                {"histogram", Fields{{"from", field.histogram.low()},
                                     {"width", field.histogram.width()},
                                     {"counts", Data::list(field.histogram.counts())}}}};
}

Fields pointsData(const PointStats& points) {
  return {{"points", points.points},
          {"lastReturns", points.lastReturns},
          {"cells", points.cells},
          {"pointsPerCell", perCell(points.points, points)},
          {"lastReturnsPerCell", perCell(points.lastReturns, points)},
          {"low", Data::list(points.bounds.low)},
          {"high", Data::list(points.bounds.high)}};
}

Data classData(const ClassStats& entry, const CloudClasses& classes) {
  Fields data{{"number", entry.number}, {"name", nameOfClass(classes, entry.number)}};
  for (auto& field : pointsData(entry.points)) data.push_back(std::move(field));
  return data;
}

} // namespace

std::string statsText(const CloudStats& stats, const CloudClasses& names) {
  if (stats.all.points == 0) return {};
  Rows fields;
  for (const FieldStats& field : stats.fields) fields.push_back(fieldRow(field, stats));
  Rows classes;
  for (const ClassStats& entry : stats.classes)
    classes.push_back(
        pointsRow(fmt::format("{}", entry.number), nameOfClass(names, entry.number), entry.points));
  classes.push_back(pointsRow("all", {}, stats.all));
  return tableText({"FIELD", "VALUES", "LOWEST", "HIGHEST", "MEAN", "DEVIATION", "HISTOGRAM"}, fields) +
         tableText({"CLASS", "NAME", "POINTS", "PER CELL", "LAST", "X", "Y", "Z"}, classes) +
         "A cell is a square of one unit that holds a point of the class; LAST counts last returns a cell.\n";
}

Data statsData(const CloudStats& stats, const CloudClasses& names) {
  const auto dataOfClass = [&names](const ClassStats& entry) { return classData(entry, names); };
  return Fields{{"fields", Data::list(stats.fields, fieldData)},
                {"classes", Data::list(stats.classes, dataOfClass)},
                {"all", pointsData(stats.all)}};
}

} // namespace Zamt::Host
