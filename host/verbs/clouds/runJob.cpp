#include "host/verbs/clouds/runJob.h"

#include "host/regions/Region.h"
#include "host/session/OutputPlan.h"
#include "host/verbs/options.h"
#include "host/verbs/texts.h"

#include <fmt/format.h>

#include <algorithm>
#include <fstream>
#include <sstream>
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

/// Puts blanks in front of numbers, so that they end in one column.
void alignRight(std::vector<std::vector<std::string>>& rows, std::size_t column) {
  std::size_t width = 0;
  for (const auto& row : rows) width = std::max(width, row[column].size());
  for (auto& row : rows) row[column].insert(0, width - row[column].size(), ' ');
}

/// Which classes went where, a row each.
std::string movesText(const Outcome& outcome) {
  if (outcome.moves.empty()) return {};
  const auto classText = [&](std::uint8_t number) {
    const std::string& name = outcome.classNames.at(number);
    return name.empty() ? fmt::format("{}", number) : fmt::format("{} {}", number, name);
  };
  std::vector<std::vector<std::string>> rows;
  for (const ClassMove& move : outcome.moves)
    rows.push_back({classText(move.from), classText(move.to), grouped(move.points)});
  alignRight(rows, 2);
  std::istringstream lines(tableText({"FROM", "TO", "POINTS"}, rows));
  std::string text;
  for (std::string line; std::getline(lines, line);) text += "    " + line + '\n';
  return text;
}

std::string outcomeText(const Outcome& outcome) {
  std::string text = outcome.cloud + '\n';
  for (const std::string& line : outcome.report) text += "  " + line + '\n';
  for (const std::string& file : outcome.files)
    text += fmt::format("  {} {}\n", outcome.preview ? "would write" : "wrote", file);
  if (!outcome.ok) return text;
  std::uint64_t moved = 0;
  for (const ClassMove& move : outcome.moves) moved += move.points;
  text += fmt::format("  {} of {} {}\n", grouped(moved), countOf(outcome.points, "point"),
                      outcome.preview ? "would change" : "changed");
  text += movesText(outcome);
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

Data moveData(const ClassMove& move, const Outcome& outcome) {
  return Fields{{"from", move.from},
                {"fromName", outcome.classNames.at(move.from)},
                {"to", move.to},
                {"toName", outcome.classNames.at(move.to)},
                {"points", move.points}};
}

Data outcomeData(const Outcome& outcome) {
  const auto dataOf = [&outcome](const ClassChange& change) { return changeData(change, outcome); };
  const auto dataOfMove = [&outcome](const ClassMove& move) { return moveData(move, outcome); };
  return Fields{{"file", outcome.cloud},
                {"ok", outcome.ok},
                {"report", Data::list(outcome.report)},
                {"changes", Data::list(outcome.changes, dataOf)},
                {"moves", Data::list(outcome.moves, dataOfMove)},
                {"files", Data::list(outcome.files)},
                {"output", outcome.output}};
}

} // namespace

std::vector<Option> cloudOptions() {
  return {{.name = "cloud",
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
           .help = "Where to work: a box of four or six numbers, a polygon as WKT or GeoJSON, or @FILE "
                   "with one of these in it. See \"quindle help regions\".",
           .placeholder = "REGION"},
          {.name = "classes",
           .help = "The only classes whose points are looked at: names or numbers, separated by commas.",
           .placeholder = "CLASSES"},
          {.name = "threads",
           .kind = Option::Kind::Number,
           .help = fmt::format("How many threads to use, at most {}. As many as the machine has if left out.",
                               maxThreads),
           .placeholder = "N",
           .least = 1,
           .most = maxThreads}};
}

std::vector<Option> outputOptions(bool inPlace) {
  std::vector<Option> options;
  options.push_back(
      {.name = "output",
       .help = "Where to write: a file, or a directory that is there, which several clouds need.",
       .placeholder = "OUT",
       .letter = 'o'});
  if (inPlace)
    options.push_back({.name = "in-place",
                       .kind = Option::Kind::Flag,
                       .help = "Write each cloud over itself.",
                       .excludes = {"output"}});
  return options;
}

Option outcomesJsonOption() {
  return jsonOption(
      "Print JSON: \"clouds\" with file, ok, report, output, changes (class, name, considered, modified, "
      "from), moves (from, fromName, to, toName, points) and files (that actions write) of each, and "
      "\"diagnostics\".");
}

std::vector<Option> jobOptions() {
  std::vector<Option> options{quindleArgument()};
  for (Option& option : cloudOptions()) options.push_back(std::move(option));
  options.push_back(outcomesJsonOption());
  return options;
}

bool readJob(const Request& request, Job& job, std::string& problem) {
  job.classes = request.text("classes");
  job.threads = static_cast<unsigned>(request.number("threads", 0));
  return readRegionText(request.text("region"), job.region, problem) &&
         readSettings(request.texts("set"), job.values, problem);
}

Status readOutputs(const Request& request, Job& job, std::string& problem) {
  const std::vector<std::string>& files = request.texts("cloud");
  std::vector<std::string> outputs;
  const OutputPlan planned =
      planOutputs({files, request.text("output"), request.flag("in-place")}, outputs, problem);
  if (planned != OutputPlan::Good) return planned == OutputPlan::Senseless ? Status::Usage : Status::Failed;
  for (std::size_t i = 0; i < files.size(); ++i) job.clouds.push_back({files[i], outputs[i]});
  return Status::Done;
}

std::function<void(Diag)> noticeTo(Answer& answer, const Context& context) {
  return [&](Diag diag) {
    if (diag.errorCount != 0) answer.status = Status::Failed;
    context.deliver(answer, {std::move(diag), {}, {}, {}});
  };
}

Answer carryOut(const Job& job, const Context& context, Answer answer) {
  const auto finished = [&](Outcome outcome, Diag said) {
    if (!outcome.ok) answer.status = Status::Failed;
    context.deliver(answer, partOf(std::move(said), std::move(outcome), outcomeText, outcomeData));
  };
  std::string problem;
  if (!runClouds(job, {context.stop, context.progress, finished, noticeTo(answer, context)}, problem))
    return refused(Status::Usage, problem);
  if (context.stop.requested()) answer.status = Status::Failed;
  return answer;
}

Answer runJob(const Request& request, Job job, const Context& context) {
  std::string problem;
  if (!readJob(request, job, problem)) return refused(Status::Usage, problem);
  Diag diag;
  if (!context.quindles.load(request.text("quindle"), job.document, diag))
    return answerOf({std::move(diag), {}, {}, {}});
  Answer answer;
  context.deliver(answer, {{}, {}, {}, std::move(diag)});
  return carryOut(job, context, std::move(answer));
}

} // namespace Zamt::Host
