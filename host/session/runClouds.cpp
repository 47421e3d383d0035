#include "host/session/runClouds.h"

#include "host/clouds/StandardClasses.h"
#include "host/objects/Grid.h"
#include "host/session/Collection.h"
#include "host/session/Scene.h"

#include <oneapi/tbb/global_control.h>

#include <optional>
#include <utility>

namespace Zamt::Host {

namespace {

void collectNames(const PointCloud& cloud, Outcome& outcome) {
  for (const ClassChange& change : outcome.changes)
    for (unsigned number = 0; number < change.from.size(); ++number)
      if (change.from[number] != 0)
        outcome.classNames[static_cast<std::uint8_t>(number)] =
            nameOfClass(cloud, static_cast<std::uint8_t>(number));
}

/// The clouds of one job, in a scene that is ready for them.
class JobRun {
public:
  JobRun(const Job& job, const JobWatch& watch, Scene& scene) : job_(job), watch_(watch), scene_(scene) {}

  void runAll() {
    for (std::size_t i = 0; i < job_.clouds.size() && !watch_.stop.requested(); ++i) {
      const JobCloud& cloud = job_.clouds[i];
      if (watch_.progress) watch_.progress(cloud.file, i, job_.clouds.size());
      Outcome outcome{cloud.file, cloud.output.empty(), {}, false, {}, {}, {}};
      Diag diag;
      runOne(cloud, outcome, diag);
      if (watch_.stop.requested() && !outcome.ok) {
        diag.clear(); // what failed, failed because of that
        diag.error(stoppedMessage, cloud.file);
        outcome.report.clear();
      }
      watch_.finished(std::move(outcome), std::move(diag));
    }
  }

private:
  /// Keeps what came of it in `outcome`; writes if there is an output.
  void runOne(const JobCloud& cloud, Outcome& outcome, Diag& diag) {
    const bool draws = !job_.picture.empty();
    if (!scene_.openCloud(cloud.file, job_.document, diag)) return;
    if (draws && !scene_.addDisplay(diag)) return;
    QuindleRunResult result;
    const bool good = scene_.run(job_.document, job_.values, outcome.preview, result, diag);
    outcome.report = result.report;
    if (!good || watch_.stop.requested()) return;
    outcome.changes = scene_.changes();
    collectNames(*scene_.grid()->cloud, outcome);
    if (!outcome.preview && !scene_.writeCloud(cloud.output, diag)) return;
    if (draws && !scene_.savePicture(job_.picture, diag)) return;
    outcome.output = outcome.preview ? job_.picture : cloud.output;
    outcome.ok = true;
  }

  const Job& job_;
  const JobWatch& watch_;
  Scene& scene_;
};

} // namespace

bool runClouds(const Job& job, const JobWatch& watch, std::string& problem) {
  std::optional<tbb::global_control> limit;
  if (job.threads != 0) limit.emplace(tbb::global_control::max_allowed_parallelism, job.threads);
  Scene scene(watch.stop);
  if (!job.region.empty() && !scene.setRegion(job.region, problem)) return false;
  scene.runtime().resolver = collectionResolver(job.document.sourceFile);
  if (!job.classes.empty()) scene.setClasses(job.classes);
  JobRun(job, watch, scene).runAll();
  return true;
}

} // namespace Zamt::Host
