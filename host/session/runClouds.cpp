#include "host/session/runClouds.h"

#include "files/AtomicFile.h"
#include "host/clouds/ClassMoves.h"
#include "host/objects/Grid.h"
#include "host/session/JobScene.h"
#include "host/session/cloudClasses.h"
#include "quindle/core/QuindleNodes.h"

#include <filesystem>
#include <set>
#include <system_error>
#include <utility>

namespace Zamt::Host {

namespace {

void collectNames(const Grid& grid, Outcome& outcome) {
  std::set<std::uint8_t> numbers;
  for (const ClassChange& change : outcome.changes)
    for (unsigned number = 0; number < change.from.size(); ++number)
      if (change.from[number] != 0) numbers.insert(static_cast<std::uint8_t>(number));
  for (const ClassMove& move : outcome.moves) numbers.insert({move.from, move.to});
  for (const std::uint8_t number : numbers)
    outcome.classNames[number] = nameOfClass(*grid.cloud, grid.labels, number);
}

/// About how often the points are gone through: for every change to work out, count and apply it, thrice more
/// where neighbours are counted, and once to compare at the end. What other Quindles do is not known before;
/// writing, which is not counted, gets its share.
double passesOf(const Job& job) {
  const bool writes = !job.clouds.empty() && !job.clouds.front().output.empty();
  double passes = writes ? 3 : 1;
  for (const QuindleStep* const step : quindleSteps(job.document)) {
    if (step->kind == QuindleStep::Kind::Classify) passes += 3;
    for (const QuindleExpr* const expr : quindleExprs(step->condition))
      if (expr->kind == QuindleExpr::Kind::Call && expr->name == "neighbours") passes += 3;
  }
  return passes;
}

/// The clouds of one job, in a scene that is ready for them.
class JobRun {
public:
  JobRun(const Job& job, const JobWatch& watch, JobScene& session)
      : job_(job), watch_(watch), session_(session), scene_(session.scene()), passes_(passesOf(job)) {}

  void runAll() {
    for (std::size_t i = 0; i < job_.clouds.size() && !watch_.stop.requested(); ++i) {
      const JobCloud& cloud = job_.clouds[i];
      Outcome outcome;
      outcome.cloud = cloud.file;
      outcome.preview = cloud.output.empty();
      Diag diag;
      runOne(i, outcome, diag);
      session_.finishDiag(cloud, diag);
      outcome.ok = outcome.failure == Failure::None;
      if (watch_.stop.requested() && !outcome.ok) {
        outcome.failure = Failure::Interrupted;
        diag.clear(); // what failed, failed because of that
        diag.error(stoppedMessage, cloud.file);
        outcome.report.clear();
      }
      watch_.finished(std::move(outcome), std::move(diag));
    }
  }

private:
  /// Keeps what came of it in `outcome`; writes if there is an output.
  void runOne(std::size_t index, Outcome& outcome, Diag& diag) {
    const JobCloud& cloud = job_.clouds[index];
    scene_.files() = {outcome.preview, {}};
    HeldFile held;
    outcome.failure = Failure::Writing;
    if (!mayWrite(cloud, held, diag)) return;
    outcome.failure = Failure::Reading;
    if (!session_.openCloud(index, watch_.progress, passes_, diag)) return;
    outcome.failure = Failure::Running;
    QuindleRunResult result;
    const bool good = scene_.run(job_.document, job_.values, false, result, diag);
    outcome.report = result.report;
    outcome.files = scene_.files().paths;
    if (!good || watch_.stop.requested()) return;
    outcome.changes = scene_.changes();
    if (!compareClasses(outcome, diag)) return;
    outcome.failure = Failure::Writing;
    if (!scene_.writeCloud(outcome.preview ? cloud.file : cloud.output, diag) ||
        !(job_.picture.empty() || scene_.savePicture(job_.picture, diag)))
      return;
    outcome.output = outcome.preview ? job_.picture : cloud.output;
    outcome.failure = Failure::None;
  }

  /// Finds out which classes went where.
  bool compareClasses(Outcome& outcome, Diag& diag) {
    const Rethold::StrongPtr<Grid> grid = scene_.grid();
    ClassMoves moves;
    std::string problem;
    if (!findClassMoves(*grid->cloud, watch_.stop, moves, problem)) {
      diag.error(problem, outcome.cloud);
      return false;
    }
    outcome.points = grid->cloud->size();
    for (const auto& [move, points] : moves.points)
      outcome.moves.push_back({move.first, move.second, points});
    collectNames(*grid, outcome);
    return true;
  }

  const Job& job_;
  const JobWatch& watch_;
  JobScene& session_;
  Scene& scene_;
  const double passes_;
};

} // namespace

bool mayWrite(const JobCloud& cloud, HeldFile& held, Diag& diag) {
  if (cloud.output.empty()) return true;
  std::error_code unknown;
  const bool isReplaced = std::filesystem::equivalent(cloud.file, cloud.output, unknown);
  std::string problem;
  if (AtomicFile::mayCreate(cloud.output, problem) && (!isReplaced || held.hold(cloud.output, problem)))
    return true;
  diag.error(problem, cloud.output);
  return false;
}

bool runClouds(const Job& job, const JobWatch& watch, std::string& problem) {
  JobScene session(job, watch.stop);
  if (!session.prepare(problem)) return false;
  Diag diag;
  const bool good = session.findClasses(diag);
  if (watch.noticed && !diag.entries.empty()) watch.noticed(std::move(diag));
  if (good) JobRun(job, watch, session).runAll();
  return true;
}

} // namespace Zamt::Host
