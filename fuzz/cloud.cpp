// Whole clouds, as the command takes them: what is told of any bytes is consistent, a count finds the points
// that a run then changes, and what the run writes reads back with the classes that it says.

#include "fuzz/files.h"
#include "host/clouds/cloudInfo.h"
#include "host/clouds/openCloud.h"
#include "host/session/runClouds.h"
#include "host/session/selectClouds.h"
#include "quindle/text/parseQuindle.h"

using namespace Zamt;
using namespace Zamt::Host;
using Zamt::Fuzz::require;
using Zamt::Fuzz::requireSentence;

namespace {

const Stop goOn;

/// More points than this take longer than a fuzzer has.
constexpr std::uint64_t mostPoints = 100'000;

/// A class of the standard, and one that files have to be given the name of.
constexpr std::array<const char*, 2> classNames{"Water", "Kiosk"};

Job jobOn(const std::string& cloud, const std::string& output, const std::string& condition,
          const std::string& className) {
  Job job;
  Diag diag;
  require(parseQuindle("quindle \"Any\" { param cloud : Grid = active on run { select " + condition +
                           " classify into \"" + className + "\" } }",
                       "any", job.document, diag),
          "the Quindle is one");
  job.clouds = {{cloud, output}};
  return job;
}

void requireFault(bool good, const Diag& diag) {
  require(good == (diag.errorCount == 0), "what fails says why, and nothing else does");
  if (!good) requireSentence(diag.firstError());
}

Selected count(const std::string& cloud, const std::string& condition) {
  Selected found;
  const auto finished = [&found](Selected selected, const Diag& diag) {
    requireFault(selected.ok, diag);
    found = std::move(selected);
  };
  std::string problem;
  require(selectClouds(jobOn(cloud, {}, condition, classNames[0]), {goOn, {}, finished}, problem),
          "a job without a region can be prepared");
  return found;
}

Outcome run(const std::string& cloud, const std::string& output, const std::string& condition,
            const std::string& className) {
  Outcome come;
  const auto finished = [&come](Outcome outcome, const Diag& diag) {
    requireFault(outcome.ok, diag);
    come = std::move(outcome);
  };
  std::string problem;
  require(runClouds(jobOn(cloud, output, condition, className), {goOn, {}, finished}, problem),
          "a job without a region can be prepared");
  return come;
}

/// The classes of a cloud, which can be read.
ClassCounts classesOf(const std::string& path) {
  std::string error;
  const auto cloud = openCloud(path, error);
  require(cloud != nullptr, "what was written can be opened");
  ClassCounts counts{};
  require(countClasses(*cloud, goOn, counts, error), "what was written can be read");
  return counts;
}

void tryRun(const std::string& cloud, const std::string& output, const CloudInfo& info,
            const char* className) {
  const std::string condition = "(Intensity >= 1 or neighbours(1) <= 3)";
  const Outcome outcome = run(cloud, output, condition, className);
  if (!outcome.ok) return;
  ClassCounts expected{};
  for (const ClassCount& entry : info.classes) expected[entry.number] = entry.points;
  std::uint64_t moved = 0;
  for (const ClassMove& move : outcome.moves) {
    require(move.points <= expected[move.from], "no class loses more points than it has");
    expected[move.from] -= move.points;
    expected[move.to] += move.points;
    moved += move.points;
  }
  require(classesOf(output) == expected, "the classes that are written are those that are told");
  if (outcome.moves.empty()) return;
  const std::string to = std::to_string(outcome.moves[0].to);
  const Selected all = count(cloud, condition);
  const Selected there =
      count(cloud, condition + " and Classification >= " + to + " and Classification <= " + to);
  require(all.ok && there.ok && all.kept - there.kept == moved,
          "a count finds the points that a run changes");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const Fuzz::Folder folder;
  const Fuzz::MemoryFile file(data, size);
  std::string error;
  const auto cloud = openCloud(file.path(), error);
  CloudInfo info;
  if (cloud && cloud->size() > mostPoints) return 0;
  if (cloud && inspectCloud(*cloud, goOn, info, error)) { // reads every value of every field
    std::uint64_t counted = 0;
    for (const ClassCount& entry : info.classes) counted += entry.points;
    require(counted == cloud->size(), "every point is counted");
    for (const char* className : classNames) tryRun(file.path(), folder.path("out"), info, className);
  } else {
    requireSentence(error);
    // A layer that is damaged does not matter to a run that leaves it as it is.
    const Outcome outcome = run(file.path(), folder.path("out"), "Z >= 0", classNames[0]);
    require(cloud || !outcome.ok, "what can't be opened is not written");
  }
  return 0;
}
