#include "host/verbs/clouds/runJob.h"

#include "host/regions/Region.h"
#include "host/session/OutputPlan.h"
#include "host/session/checkValues.h"
#include "host/verbs/clouds/RunSummary.h"
#include "host/verbs/options.h"
#include "host/verbs/texts.h"

#include <fmt/format.h>

#include <algorithm>
#include <fstream>
#include <string>
#include <utility>

namespace Zamt::Host {

namespace {

/// No run gains from more; a larger number is a slip.
constexpr unsigned maxThreads = 1024;

/// What a region's file may hold, inclusive: far more than any outline drawn by hand or taken from a map.
constexpr std::size_t maxRegionBytes = std::size_t{64} * 1024 * 1024;

/// What says that the region comes from standard input.
constexpr const char* regionFromInput = "@-";

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

/// The text of a region, read from its file if it is "@" and the name of one, or from standard input if that
/// is "-"; empty if there is none. False, with a sentence in `problem`, when it is no region.
bool readRegionText(const std::string& written, const QuindleReader& reader, std::string& text,
                    std::string& problem) {
  text = written;
  if (text.empty()) return true;
  if (text[0] == '@') {
    text.clear();
    if (written == regionFromInput ? !reader.readInput("region", text, problem)
                                   : !readText(written.substr(1), text, problem))
      return false;
  }
  Region region;
  return parseRegion(text, region, problem);
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
  text += movesText(namedMoves(outcome));
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
                {"moves", movesData(namedMoves(outcome))},
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
           .required = true,
           .names = Option::Names::Cloud},
          setOption(),
          {.name = "region",
           .help = "Where to work: a box of four or six numbers, a polygon as WKT or GeoJSON, or @FILE "
                   "with one of these in it, or @- for standard input. See \"quindle help regions\".",
           .placeholder = "REGION"},
          {.name = "classes",
           .help = "The only classes whose points are looked at: names or numbers, separated by commas.",
           .placeholder = "CLASSES",
           .names = Option::Names::Classes},
          {.name = "threads",
           .kind = Option::Kind::Number,
           .help = fmt::format("How many threads to use, at most {}. As many as the machine has if left out.",
                               maxThreads),
           .placeholder = "N",
           .least = 1,
           .most = maxThreads},
          {.name = "verbose",
           .kind = Option::Kind::Flag,
           .help = "Tell also what the objects of the scene say in passing."}};
}

std::vector<Option> outputOptions(bool inPlace) {
  std::vector<Option> options;
  options.push_back(
      {.name = "output",
       .help = "Where to write: a LAS or LAZ file, or a directory that is there, which several clouds need.",
       .placeholder = "OUT",
       .letter = 'o',
       .names = Option::Names::CloudOutput});
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
      "from), moves (from, fromName, to, toName, points) and files (that actions write) of each, "
      "\"summary\" with changed, unchanged, failed (how many of them), moves and failures (kind, clouds, "
      "first, why) of all, and \"diagnostics\".");
}

std::vector<Option> jobOptions() {
  std::vector<Option> options{quindleArgument()};
  for (Option& option : cloudOptions()) options.push_back(std::move(option));
  options.push_back(outcomesJsonOption());
  return options;
}

bool readJob(const Request& request, const Context& context, Job& job, std::string& problem) {
  if (request.text("quindle") == "-" && request.text("region") == regionFromInput) {
    problem = "Standard input can hold the Quindle or the region, but not both. Write one of them to a file.";
    return false;
  }
  job.verbose = request.flag("verbose");
  job.classes = request.text("classes");
  job.threads = static_cast<unsigned>(request.number("threads", 0));
  return readRegionText(request.text("region"), context.quindles, job.region, problem) &&
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
  const auto summary = std::make_shared<RunSummary>();
  const auto finished = [&](Outcome outcome, Diag said) {
    if (!outcome.ok) answer.status = Status::Failed;
    summary->add(outcome, said);
    const std::string about = outcome.cloud;
    Part part = partOf(std::move(said), std::move(outcome), outcomeText, outcomeData);
    part.about = about;
    context.deliver(answer, std::move(part));
  };
  std::string problem;
  if (!runClouds(job, {context.stop, context.progress, finished, noticeTo(answer, context)}, problem))
    return refused(Status::Usage, problem);
  if (context.stop.requested()) answer.status = Status::Failed;
  if (job.clouds.size() > 1) answer.summary.text = [summary] { return summary->text(); };
  answer.summary.data = [summary] { return summary->data(); };
  return answer;
}

Answer runJob(const Request& request, Job job, const Context& context) {
  std::string problem;
  if (!readJob(request, context, job, problem)) return refused(Status::Usage, problem);
  Diag diag;
  if (!context.quindles.loadAdvised(request.text("quindle"), job.document, diag) ||
      !checkValues(job.document, job.values, diag))
    return answerOf({std::move(diag), {}, {}, {}});
  for (const Diag::Entry& entry : diag.entries) job.told.insert(entry.message);
  Answer answer;
  context.deliver(answer, {std::move(diag), {}, {}, {}});
  return carryOut(job, context, std::move(answer));
}

} // namespace Zamt::Host
