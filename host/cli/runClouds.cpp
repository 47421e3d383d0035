#include "host/cli/runClouds.h"

#include "files/Interruption.h"
#include "host/clouds/StandardClasses.h"
#include "host/objects/Grid.h"
#include "host/session/Collection.h"
#include "host/session/QuindleSource.h"
#include "host/session/Scene.h"

#include <fmt/format.h>
#include <nlohmann/json.hpp>
#include <oneapi/tbb/global_control.h>

#include <map>
#include <optional>

namespace Zamt::Host {

namespace {

/// What the run on one cloud came to.
struct Outcome {
  std::string cloud;
  std::string output; ///< Where it was written; empty for nowhere.
  bool ok = false;
  std::vector<std::string> report;
  std::vector<ClassChange> changes;
  std::map<std::uint8_t, std::string> classNames; ///< Of the classes that points come from.
};

/// What every cloud of one command is run with.
struct Job {
  QuindleDocument document;
  std::map<std::string, std::string> values;
  std::string region;
};

void collectNames(const PointCloud& cloud, Outcome& outcome) {
  for (const ClassChange& change : outcome.changes)
    for (unsigned number = 0; number < change.from.size(); ++number)
      if (change.from[number] != 0)
        outcome.classNames[static_cast<std::uint8_t>(number)] =
            nameOfClass(cloud, static_cast<std::uint8_t>(number));
}

/// Runs on the cloud of `outcome` and keeps what came of it; writes if there is an output.
void runOne(Scene& scene, const Job& job, const std::string& output, const std::string& picture,
            Outcome& outcome, Diag& diag) {
  const bool preview = output.empty();
  if (!scene.openCloud(outcome.cloud, job.document, diag)) return;
  if (!picture.empty() && !scene.addDisplay(diag)) return;
  QuindleRunResult result;
  const bool good = scene.run(job.document, job.values, preview, result, diag);
  outcome.report = result.report;
  if (!good || interrupted) return;
  outcome.changes = scene.changes();
  collectNames(*scene.grid()->cloud, outcome);
  if (!preview && !scene.writeCloud(output, diag)) return;
  if (!picture.empty() && !scene.savePicture(picture, diag)) return;
  outcome.output = preview ? picture : output;
  outcome.ok = true;
}

std::string classText(unsigned number, const std::string& name) {
  return name.empty() ? fmt::format("class {}", number) : fmt::format("class {} ({})", number, name);
}

void printOutcome(const Outcome& outcome, bool preview, Console& console) {
  console.printLine(outcome.cloud);
  for (const std::string& line : outcome.report) console.printLine("  " + line);
  if (!outcome.ok) return;
  for (const ClassChange& change : outcome.changes) {
    console.printLine(fmt::format("  {} of {} {} to {}", grouped(change.modified),
                                  countOf(change.considered, "point"), preview ? "would go" : "went",
                                  classText(change.target, change.targetName)));
    for (const auto& [number, name] : outcome.classNames)
      if (change.from[number] != 0)
        console.printLine(
            fmt::format("    {:>12} from {}", grouped(change.from[number]), classText(number, name)));
  }
  if (!outcome.output.empty())
    console.printLine((preview ? "  drawn in " : "  written to ") + outcome.output);
}

nlohmann::json outcomeJson(const Outcome& outcome) {
  nlohmann::json changes = nlohmann::json::array();
  for (const ClassChange& change : outcome.changes) {
    nlohmann::json from = nlohmann::json::array();
    for (const auto& [number, name] : outcome.classNames)
      if (change.from[number] != 0)
        from.push_back({{"class", number}, {"name", name}, {"points", change.from[number]}});
    changes.push_back({{"class", change.target},
                       {"name", change.targetName},
                       {"considered", change.considered},
                       {"modified", change.modified},
                       {"from", from}});
  }
  return {{"file", outcome.cloud},
          {"ok", outcome.ok},
          {"report", outcome.report},
          {"changes", changes},
          {"output", outcome.output}};
}

/// False when the command line asks for what the Quindle does not have.
bool prepare(const RunOptions& options, Job& job, Diag& diag, std::string& misuse) {
  if (!readRegionText(options, job.region, misuse)) return false;
  return readSettings(options, job.values, misuse) && loadQuindle(options.quindle, job.document, diag);
}

Exit runAll(const RunOptions& options, const std::vector<std::string>& outputs, const std::string& picture,
            const Job& job, Console& console) {
  Scene scene;
  std::string problem;
  if (!job.region.empty() && !scene.setRegion(job.region, problem)) {
    console.error(problem);
    return Exit::Usage;
  }
  scene.runtime().resolver = collectionResolver(job.document.sourceFile);
  if (!options.classes.empty()) scene.setClasses(options.classes);
  Diag all;
  bool good = true;
  nlohmann::json clouds = nlohmann::json::array();
  for (std::size_t i = 0; i < options.clouds.size() && !interrupted; ++i) {
    Outcome outcome;
    outcome.cloud = options.clouds[i];
    Diag diag;
    console.progress(outcome.cloud, i, options.clouds.size());
    runOne(scene, job, outputs.empty() ? std::string{} : outputs[i], picture, outcome, diag);
    if (interrupted && !outcome.ok) {
      diag.clear(); // what failed, failed because of that
      diag.error(interruptedMessage, outcome.cloud);
      outcome.report.clear();
    }
    console.endProgress();
    good = good && outcome.ok;
    all.absorb(diag);
    clouds.push_back(outcomeJson(outcome));
    if (options.json) continue;
    console.report(diag);
    printOutcome(outcome, outputs.empty(), console);
  }
  if (options.json) console.printJson({{"clouds", clouds}, {"diagnostics", diagnosticsJson(all)}});
  return good && !interrupted ? Exit::Done : Exit::Failed;
}

} // namespace

Exit runClouds(const RunOptions& options, const std::vector<std::string>& outputs, const std::string& picture,
               Console& console) {
  Job job;
  Diag diag;
  std::string misuse;
  if (!prepare(options, job, diag, misuse)) {
    if (!misuse.empty()) console.error(misuse);
    if (options.json && misuse.empty())
      console.printJson({{"clouds", nlohmann::json::array()}, {"diagnostics", diagnosticsJson(diag)}});
    else
      console.report(diag);
    return misuse.empty() ? Exit::Failed : Exit::Usage;
  }
  if (!options.json) console.report(diag);
  std::optional<tbb::global_control> limit;
  if (options.threads != 0) limit.emplace(tbb::global_control::max_allowed_parallelism, options.threads);
  return runAll(options, outputs, picture, job, console);
}

} // namespace Zamt::Host
