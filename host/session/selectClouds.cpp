#include "host/session/selectClouds.h"

#include "host/session/JobScene.h"

#include <utility>

namespace Zamt::Host {

namespace {

bool selectOne(const Job& job, const JobCloud& cloud, Scene& scene, Selected& selected, Diag& diag) {
  PointMask kept;
  HeldFile held;
  if (!mayWrite(cloud, held, diag)) return false;
  if (!scene.openCloud(cloud.file, job.document, diag) || !scene.select(job.document, job.values, kept, diag))
    return false;
  selected.points = kept.size();
  selected.kept = kept.count();
  if (cloud.output.empty()) return true;
  const Rethold::StrongPtr<Grid> grid = scene.grid();
  std::string problem;
  if (grid->cloud->extract(kept, cloud.output, grid->stop, problem)) {
    selected.output = cloud.output;
    return true;
  }
  diag.error(problem, cloud.output);
  return false;
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
    if (watch.progress) watch.progress(cloud.file, i, job.clouds.size());
    Selected selected;
    selected.cloud = cloud.file;
    Diag diag;
    selected.ok = selectOne(job, cloud, session.scene(), selected, diag);
    if (watch.stop.requested() && !selected.ok) {
      diag.clear(); // what failed, failed because of that
      diag.error(stoppedMessage, cloud.file);
    }
    watch.finished(std::move(selected), std::move(diag));
  }
  return true;
}

} // namespace Zamt::Host
