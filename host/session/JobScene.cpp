#include "host/session/JobScene.h"

#include "host/session/Collection.h"

#include <algorithm>
#include <string_view>
#include <utility>

namespace Zamt::Host {

namespace {

constexpr std::string_view says = "\" says: ";

/// Whether it is what an object says of itself: its name in quotes, and its words.
bool isSaidInPassing(const Diag::Entry& entry) {
  const std::size_t end = entry.message.find('"', 1);
  return entry.severity == Diag::Severity::Note && entry.message.starts_with('"') &&
         end != std::string::npos && entry.message.compare(end, says.size(), says) == 0;
}

} // namespace

JobScene::JobScene(const Job& job, const Stop& stop) : job_(job), scene_(stop) {
  if (job.threads != 0) limit_.emplace(tbb::global_control::max_allowed_parallelism, job.threads);
}

bool JobScene::prepare(std::string& problem) {
  if (!job_.region.empty() && !scene_.setRegion(job_.region, problem)) return false;
  scene_.runtime().resolver = collectionResolver(job_.document.sourceFile);
  if (!job_.classes.empty()) scene_.setClasses(job_.classes);
  return true;
}

bool JobScene::openCloud(std::size_t index, const Progress& progress, double passes, Diag& diag) {
  ProgressNow now{job_.clouds[index].file, index, job_.clouds.size()};
  if (progress) progress(now);
  if (!scene_.openCloud(now.what, job_.document, diag)) return false;
  const std::shared_ptr<PointCloud> cloud = scene_.grid()->cloud;
  now.points = cloud->size();
  if (progress)
    cloud->meter().tell([progress, now, passes](std::uint64_t points) mutable {
      now.part = std::min(1.0, static_cast<double>(points) / (passes * static_cast<double>(now.points)));
      progress(now);
    });
  return true;
}

bool JobScene::isWanted(const Diag::Entry& entry) const {
  if (entry.severity == Diag::Severity::Error) return true;
  return !job_.told.contains(entry.message) && (job_.verbose || !isSaidInPassing(entry));
}

void JobScene::finishDiag(const JobCloud& cloud, Diag& diag) const {
  Diag kept;
  for (const Diag::Entry& entry : diag.entries)
    if (isWanted(entry)) kept.at(entry.severity, entry.message, entry.file, entry.line, entry.column);
  if (const auto grid = scene_.grid())
    for (const std::string& warning : grid->warnings) kept.warning(warning, cloud.file);
  diag = std::move(kept);
}

} // namespace Zamt::Host
