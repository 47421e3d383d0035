#include "host/clouds/cloudInfo.h"
#include "host/clouds/openCloud.h"
#include "host/session/cloudClasses.h"
#include "host/verbs/clouds/infoStats.h"
#include "host/verbs/options.h"
#include "host/verbs/texts.h"
#include "host/verbs/verbs.h"

#include <fmt/format.h>

#include <algorithm>
#include <charconv>
#include <iterator>
#include <string>

namespace Zamt::Host {

namespace {

/// A cloud and what it holds.
struct Inspected {
  std::string path;
  CloudInfo info;
  CloudClasses classes;            ///< What it calls them.
  std::optional<CloudStats> stats; ///< If asked for.
};

bool inspect(Inspected& inspected, bool measured, const Stop& stop, Diag& diag) {
  std::string problem;
  const std::shared_ptr<PointCloud> cloud = openCloud(inspected.path, problem);
  bool good = cloud != nullptr;
  if (good && measured) {
    good = measureCloud(*cloud, stop, inspected.stats.emplace(), problem);
    if (good) inspected.info = infoOf(*cloud, *inspected.stats);
  } else if (good) {
    good = inspectCloud(*cloud, stop, inspected.info, problem);
  }
  if (good) inspected.classes = classesOf(*cloud);
  if (!good) diag.error(problem, inspected.path);
  return good;
}

/// "uint16", or "float[3]" for several components.
std::string typeText(const FieldRange& field) {
  const std::string name = nameOfType(field.type);
  return field.components == 1 ? name : fmt::format("{}[{}]", name, field.components);
}

/// With the digits that the type means, without those that only rounding brings.
std::string digitsOf(const FieldRange& field, double value) {
  return field.type == FieldType::F32 ? fmt::format("{:.7g}", value) : fmt::format("{:.15g}", value);
}

std::string valueText(const FieldRange& field, double value) {
  return field.hasValues ? digitsOf(field, value) : "-";
}

std::string coordinateText(double value) { return fmt::format("{:.15g}", value); }

std::string fieldsText(const CloudInfo& info) {
  std::size_t names = 5;
  std::size_t types = 4;
  for (const FieldRange& field : info.fields) {
    names = std::max(names, field.name.size());
    types = std::max(types, typeText(field).size());
  }
  std::string text =
      fmt::format("  {:<{}}  {:<{}}  {:>20}  {:>20}\n", "field", names, "type", types, "lowest", "highest");
  for (const FieldRange& field : info.fields)
    text += fmt::format("  {:<{}}  {:<{}}  {:>20}  {:>20}\n", field.name, names, typeText(field), types,
                        valueText(field, field.low), valueText(field, field.high));
  return text;
}

std::string classesText(const Inspected& cloud) {
  if (cloud.info.classes.empty()) return {};
  std::string text = fmt::format("  {:>5}  {:>15}  {}\n", "class", "points", "name");
  for (const ClassCount& entry : cloud.info.classes) {
    const std::string name = nameOfClass(cloud.classes, entry.number);
    text +=
        fmt::format("  {:>5}  {:>15}  {}\n", entry.number, grouped(entry.points), name.empty() ? "-" : name);
  }
  return text;
}

std::string compressionText(const Compression& compression) {
  std::string text = fmt::format("  {}: {}, {}\n", compression.compressor,
                                 countOf(compression.chunks, "chunk"), countOf(compression.bytes, "byte"));
  if (compression.layers.empty()) return text;
  text += fmt::format("  {:<13}  {:>15}\n", "layer", "bytes");
  for (const Compression::Layer& layer : compression.layers)
    text += fmt::format("  {:<13}  {:>15}\n", layer.name, grouped(layer.bytes));
  return text;
}

std::string infoText(const Inspected& cloud) {
  const CloudInfo& info = cloud.info;
  std::string text = fmt::format("{}: LAS 1.{}, point format {}, {}\n", cloud.path, info.versionMinor,
                                 info.pointFormat, countOf(info.points, "point"));
  if (info.compression) text += compressionText(*info.compression);
  if (!info.bounds.empty())
    for (std::size_t axis = 0; axis < 3; ++axis)
      text += fmt::format("  {}  {} .. {}\n", "xyz"[axis], coordinateText(info.bounds.low[axis]),
                          coordinateText(info.bounds.high[axis]));
  text += fieldsText(info) + classesText(cloud);
  return cloud.stats ? text + statsText(*cloud.stats, cloud.classes) : text;
}

/// The number of a text of digits: programs get what people read.
double numberOf(const std::string& digits) {
  double number = 0;
  std::from_chars(digits.data(), digits.data() + digits.size(), number);
  return number;
}

Data endOf(const FieldRange& field, double end) {
  if (!field.hasValues) return {};
  return numberOf(digitsOf(field, end));
}

Data fieldData(const FieldRange& field) {
  return Fields{{"name", field.name},
                {"type", nameOfType(field.type)},
                {"components", field.components},
                {"low", endOf(field, field.low)},
                {"high", endOf(field, field.high)}};
}

Data layerData(const Compression::Layer& layer) {
  return Fields{{"name", layer.name}, {"bytes", layer.bytes}};
}

Data compressionData(const std::optional<Compression>& compression) {
  if (!compression) return {};
  return Fields{{"compressor", compression->compressor},
                {"chunks", compression->chunks},
                {"bytes", compression->bytes},
                {"layers", Data::list(compression->layers, layerData)}};
}

Data boundsData(const Bounds& bounds) {
  if (bounds.empty()) return {};
  const auto coordinate = [](double value) { return numberOf(coordinateText(value)); };
  return Fields{{"low", Data::list(bounds.low, coordinate)}, {"high", Data::list(bounds.high, coordinate)}};
}

Data infoData(const Inspected& cloud) {
  const CloudInfo& info = cloud.info;
  const auto classData = [&cloud](const ClassCount& entry) -> Data {
    return Fields{{"number", entry.number},
                  {"name", nameOfClass(cloud.classes, entry.number)},
                  {"points", entry.points}};
  };
  Fields data{{"file", cloud.path},
              {"version", fmt::format("1.{}", info.versionMinor)},
              {"pointFormat", info.pointFormat},
              {"points", info.points},
              {"compression", compressionData(info.compression)},
              {"bounds", boundsData(info.bounds)},
              {"fields", Data::list(info.fields, fieldData)},
              {"classes", Data::list(info.classes, classData)}};
  if (cloud.stats) data.push_back({"stats", statsData(*cloud.stats, cloud.classes)});
  return data;
}

Answer showInfo(const Request& request, const Context& context) {
  Answer answer;
  for (const std::string& path : request.texts("cloud")) {
    if (context.stop.requested()) break;
    Inspected cloud{path, {}, {}, {}};
    Diag diag;
    const bool good = inspect(cloud, request.flag("stats"), context.stop, diag);
    if (!good) answer.status = Status::Failed;
    context.deliver(answer, good ? partOf(std::move(diag), std::move(cloud), infoText, infoData)
                                 : Part{std::move(diag), {}, {}, {}});
  }
  if (context.stop.requested()) answer.status = Status::Failed;
  return answer;
}

} // namespace

Verb infoVerb() {
  return {.name = "info",
          .summary = "Show what clouds hold. Fields come with their ranges, classes with their counts.",
          .footer = "Example:\n  quindle info lake.las",
          .options =
              {{.name = "cloud",
                .kind = Option::Kind::Texts,
                .help = "The clouds: LAS or LAZ files.",
                .placeholder = "CLOUD",
                .argument = true,
                .required = true,
                .names = Option::Names::Cloud},
               {.name = "stats",
                .kind = Option::Kind::Flag,
                .help = "Tell also, of each field, mean, deviation and a histogram, and of each class "
                        "where its points lie and how densely."},
               jsonOption(
                   "Print JSON: \"clouds\" with file, version, pointFormat, points, "
                   "compression (compressor, chunks, bytes, layers), bounds (low, high), "
                   "fields (name, type, components, low, high) and classes (number, name, "
                   "points) of each, with --stats also stats (fields, classes, all), and \"diagnostics\".")},
          .listName = "clouds",
          .run = showInfo};
}

} // namespace Zamt::Host
