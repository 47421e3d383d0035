#include "host/session/selectClouds.h"

#include "host/session/JobScene.h"

#include <utility>

namespace Zamt::Host {

namespace {

/// The points are gone through once, and where neighbours are counted some more.
constexpr double passes = 2;

/// Sets with what it ended.
void selectOne(const Job& job, const JobCloud& cloud, Scene& scene, Selected& selected, Diag& diag) {
  PointMask kept;
  selected.failure = Failure::Running;
  if (!scene.select(job.document, job.values, kept, diag)) return;
  selected.failure = Failure::None;
  selected.points = kept.size();
  selected.kept = kept.count();
  if (cloud.output.empty()) return;
  const Rethold::StrongPtr<Grid> grid = scene.grid();
  std::string problem;
  if (grid->cloud->extract(kept, cloud.output, grid->stop, problem)) {
    selected.output = cloud.output;
    return;
  }
  selected.failure = Failure::Writing;
  diag.error(problem, cloud.output);
}

} // namespace

bool selectClouds(const Job& job, const SelectWatch& watch, std::string& problem) {
  JobScene session(job, watch.stop);
  if (!session.prepare(problem)) return false;
  Diag noticed;
  const bool good = session.findClasses(noticed);
  if (watch.noticed && !noticed.entries.empty()) watch.noticed(std::move(noticed));
  if (!good) return true;
  for (std::size_t i = 0; i < job.clouds.size() && !watch.stop.requested(); ++i) {
    const JobCloud& cloud = job.clouds[i];
    Selected selected;
    selected.cloud = cloud.file;
    Diag diag;
    HeldFile held;
    selected.failure = Failure::Writing;
    if (mayWrite(cloud, held, diag)) {
      selected.failure = Failure::Reading;
      if (session.openCloud(i, watch.progress, passes, diag))
        selectOne(job, cloud, session.scene(), selected, diag);
    }
    session.finishDiag(cloud, diag);
    selected.ok = selected.failure == Failure::None;
    if (watch.stop.requested() && !selected.ok) {
      selected.failure = Failure::Interrupted;
      diag.clear(); // what failed, failed because of that
      diag.error(stoppedMessage, cloud.file);
    }
    watch.finished(std::move(selected), std::move(diag));
  }
  return true;
}

} // namespace Zamt::Host
