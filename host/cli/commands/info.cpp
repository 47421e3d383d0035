#include "files/Interruption.h"
#include "host/cli/commands/commands.h"
#include "host/clouds/cloudInfo.h"

#include <CLI/App.hpp>
#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <memory>
#include <string>
#include <vector>

namespace Zamt::Host {

namespace {

struct InfoOptions {
  std::vector<std::string> clouds;
  bool json = false;
};

bool inspect(const std::string& path, CloudInfo& info, Diag& diag) {
  std::string problem;
  const std::shared_ptr<PointCloud> cloud = PointCloud::open(path, problem);
  if (cloud && inspectCloud(*cloud, info, problem)) return true;
  diag.error(problem, path);
  return false;
}

/// "uint16", or "float[3]" for several components.
std::string typeText(const FieldRange& field) {
  const std::string name = nameOfType(field.type);
  return field.components == 1 ? name : fmt::format("{}[{}]", name, field.components);
}

/// With the digits that the type means, without those that only rounding brings.
std::string valueText(const FieldRange& field, double value) {
  if (!field.hasValues) return "-";
  return field.type == FieldType::F32 ? fmt::format("{:.7g}", value) : fmt::format("{:.12g}", value);
}

void printFields(const CloudInfo& info, Console& console) {
  std::size_t names = 5;
  std::size_t types = 4;
  for (const FieldRange& field : info.fields) {
    names = std::max(names, field.name.size());
    types = std::max(types, typeText(field).size());
  }
  console.printLine(
      fmt::format("  {:<{}}  {:<{}}  {:>20}  {:>20}", "field", names, "type", types, "lowest", "highest"));
  for (const FieldRange& field : info.fields) {
    const std::string low = valueText(field, field.low);
    const std::string high = valueText(field, field.high);
    console.printLine(fmt::format("  {:<{}}  {:<{}}  {:>20}  {:>20}", field.name, names, typeText(field),
                                  types, low, high));
  }
}

void printInfo(const std::string& path, const CloudInfo& info, Console& console) {
  console.printLine(fmt::format("{}: LAS 1.{}, point format {}, {}", path, info.versionMinor,
                                info.pointFormat, countOf(info.points, "point")));
  if (!info.bounds.empty())
    for (std::size_t axis = 0; axis < 3; ++axis)
      console.printLine(fmt::format("  {}  {:.12g} .. {:.12g}", "xyz"[axis], info.bounds.low[axis],
                                    info.bounds.high[axis]));
  printFields(info, console);
  if (info.classes.empty()) return;
  console.printLine(fmt::format("  {:>5}  {:>15}  {}", "class", "points", "name"));
  for (const ClassCount& entry : info.classes)
    console.printLine(fmt::format("  {:>5}  {:>15}  {}", entry.number, grouped(entry.points),
                                  entry.name.empty() ? "-" : entry.name));
}

nlohmann::json fieldJson(const FieldRange& field) {
  nlohmann::json json = {{"name", field.name},
                         {"type", nameOfType(field.type)},
                         {"components", field.components},
                         {"low", nullptr},
                         {"high", nullptr}};
  if (field.hasValues) {
    json["low"] = field.low;
    json["high"] = field.high;
  }
  return json;
}

nlohmann::json infoJson(const std::string& path, const CloudInfo& info) {
  nlohmann::json json = {{"file", path},
                         {"version", fmt::format("1.{}", info.versionMinor)},
                         {"pointFormat", info.pointFormat},
                         {"points", info.points},
                         {"bounds", nullptr},
                         {"fields", nlohmann::json::array()},
                         {"classes", nlohmann::json::array()}};
  if (!info.bounds.empty()) json["bounds"] = {{"low", info.bounds.low}, {"high", info.bounds.high}};
  for (const FieldRange& field : info.fields) json["fields"].push_back(fieldJson(field));
  for (const ClassCount& entry : info.classes)
    json["classes"].push_back({{"number", entry.number}, {"name", entry.name}, {"points", entry.points}});
  return json;
}

Exit showInfo(const InfoOptions& options, Console& console) {
  Diag diag;
  nlohmann::json clouds = nlohmann::json::array();
  for (const std::string& path : options.clouds) {
    if (interrupted) break;
    CloudInfo info;
    Diag own;
    const bool good = inspect(path, info, own);
    diag.absorb(own);
    if (good && options.json) clouds.push_back(infoJson(path, info));
    if (options.json) continue;
    console.report(own);
    if (good) printInfo(path, info, console);
  }
  if (options.json) console.printJson({{"clouds", clouds}, {"diagnostics", diagnosticsJson(diag)}});
  return diag.errorCount == 0 && !interrupted ? Exit::Done : Exit::Failed;
}

} // namespace

void addInfoCommand(CLI::App& app, Session& session) {
  auto options = std::make_shared<InfoOptions>();
  CLI::App* verb = addVerb(
      app, "info", "Show what clouds hold. Fields come with their ranges, classes with their counts.");
  verb->add_option("CLOUD", options->clouds, "The clouds: LAS files.")->required();
  verb->add_flag(
      "--json", options->json,
      "Print JSON: \"clouds\" with file, version, pointFormat, points, bounds (low, high), fields (name, "
      "type, components, low, high) and classes (number, name, points) of each, and \"diagnostics\".");
  verb->footer("Example:\n  quindle info lake.las");
  verb->callback([options, &session] { session.exit = showInfo(*options, session.console); });
}

} // namespace Zamt::Host
