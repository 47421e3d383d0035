#include "host/verbs/runJob.h"

#include "host/regions/Region.h"
#include "host/verbs/options.h"
#include "host/verbs/texts.h"

#include <fmt/format.h>

#include <fstream>
#include <string>
#include <utility>

namespace Zamt::Host {

namespace {

/// No run gains from more; a larger number is a slip.
constexpr unsigned maxThreads = 1024;

/// What a region's file may hold, inclusive: far more than any outline drawn by hand or taken from a map.
constexpr std::size_t maxRegionBytes = std::size_t{64} * 1024 * 1024;

bool readText(const std::string& path, std::string& text, std::string& problem) {
  std::ifstream file(path, std::ios::binary);
  std::vector<char> piece(65536);
  while (file && text.size() <= maxRegionBytes) {
    file.read(piece.data(), static_cast<std::streamsize>(piece.size()));
    text.append(piece.data(), static_cast<std::size_t>(file.gcount()));
  }
  if (file.eof()) return true;
  problem = fmt::format("The region's file \"{}\" can't be read. Check the path.", path);
  return false;
}

/// The text of a region, read from its file if it is "@" and the name of one; empty if there is none. False,
/// with a sentence in `problem`, when it is no region.
bool readRegionText(const std::string& written, std::string& text, std::string& problem) {
  text = written;
  if (text.empty()) return true;
  if (text[0] == '@') {
    text.clear();
    if (!readText(written.substr(1), text, problem)) return false;
  }
  Region region;
  return parseRegion(text, region, problem);
}

/// The values of "set" by parameter. False, with a sentence in `problem`, when one is no "name=value".
bool readSettings(const std::vector<std::string>& settings, std::map<std::string, std::string>& values,
                  std::string& problem) {
  for (const std::string& setting : settings) {
    const std::size_t equals = setting.find('=');
    if (equals == std::string::npos || equals == 0) {
      problem = fmt::format("\"{}\" sets nothing. Write --set NAME=VALUE.", setting);
      return false;
    }
    values[setting.substr(0, equals)] = setting.substr(equals + 1);
  }
  return true;
}

std::string classText(unsigned number, const std::string& name) {
  return name.empty() ? fmt::format("class {}", number) : fmt::format("class {} ({})", number, name);
}

std::string changeText(const ClassChange& change, const Outcome& outcome) {
  std::string text =
      fmt::format("  {} of {} {} to {}\n", grouped(change.modified), countOf(change.considered, "point"),
                  outcome.preview ? "would go" : "went", classText(change.target, change.targetName));
  for (const auto& [number, name] : outcome.classNames)
    if (change.from[number] != 0)
      text += fmt::format("    {:>12} from {}\n", grouped(change.from[number]), classText(number, name));
  return text;
}

std::string outcomeText(const Outcome& outcome) {
  std::string text = outcome.cloud + '\n';
  for (const std::string& line : outcome.report) text += "  " + line + '\n';
  if (!outcome.ok) return text;
  for (const ClassChange& change : outcome.changes) text += changeText(change, outcome);
  if (outcome.output.empty()) return text;
  return text + (outcome.preview ? "  drawn in " : "  written to ") + outcome.output + '\n';
}

Data changeData(const ClassChange& change, const Outcome& outcome) {
  Data::List from;
  for (const auto& [number, name] : outcome.classNames)
    if (change.from[number] != 0)
      from.push_back(Fields{{"class", number}, {"name", name}, {"points", change.from[number]}});
  return Fields{{"class", change.target},
                {"name", change.targetName},
                {"considered", change.considered},
                {"modified", change.modified},
                {"from", std::move(from)}};
}

Data outcomeData(const Outcome& outcome) {
  const auto dataOf = [&outcome](const ClassChange& change) { return changeData(change, outcome); };
  return Fields{{"file", outcome.cloud},
                {"ok", outcome.ok},
                {"report", Data::list(outcome.report)},
                {"changes", Data::list(outcome.changes, dataOf)},
                {"output", outcome.output}};
}

} // namespace

std::vector<Option> jobOptions() {
  return {
      quindleArgument(),
      {.name = "cloud",
       .kind = Option::Kind::Texts,
       .help = "The clouds: LAS or LAZ files, each worked on by itself.",
       .placeholder = "CLOUD",
       .argument = true,
       .required = true},
      {.name = "set",
       .kind = Option::Kind::Texts,
       .help = "Give a parameter its value. May be written several times. See \"quindle help values\".",
       .placeholder = "NAME=VALUE"},
      {.name = "region",
       .help = "Where points may change: a box of four or six numbers, a polygon as WKT or GeoJSON, or @FILE "
               "with one of these in it. See \"quindle help regions\".",
       .placeholder = "REGION"},
      {.name = "classes",
       .help = "The only classes whose points may change: names or numbers, separated by commas.",
       .placeholder = "CLASSES"},
      {.name = "threads",
       .kind = Option::Kind::Number,
       .help = fmt::format("How many threads to use, at most {}. As many as the machine has if left out.",
                           maxThreads),
       .placeholder = "N",
       .least = 1,
       .most = maxThreads},
      jsonOption("Print JSON: \"clouds\" with file, ok, report, output and changes (class, name, considered, "
                 "modified, from) of each, and \"diagnostics\".")};
}

Answer runJob(const Request& request, Job job, const Context& context) {
  std::string problem;
  if (!readRegionText(request.text("region"), job.region, problem) ||
      !readSettings(request.texts("set"), job.values, problem))
    return refused(Status::Usage, problem);
  Diag diag;
  if (!context.quindles.load(request.text("quindle"), job.document, diag))
    return answerOf({std::move(diag), {}, {}, {}});
  job.classes = request.text("classes");
  job.threads = static_cast<unsigned>(request.number("threads", 0));
  Answer answer;
  context.deliver(answer, {{}, {}, {}, std::move(diag)});
  const auto finished = [&](Outcome outcome, Diag said) {
    if (!outcome.ok) answer.status = Status::Failed;
    context.deliver(answer, partOf(std::move(said), std::move(outcome), outcomeText, outcomeData));
  };
  if (!runClouds(job, {context.stop, context.progress, finished}, problem))
    return refused(Status::Usage, problem);
  if (context.stop.requested()) answer.status = Status::Failed;
  return answer;
}

} // namespace Zamt::Host
