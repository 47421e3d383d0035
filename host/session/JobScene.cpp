#include "host/session/JobScene.h"

#include "host/session/Collection.h"

namespace Zamt::Host {

JobScene::JobScene(const Job& job, const Stop& stop) : job_(job), scene_(stop) {
  if (job.threads != 0) limit_.emplace(tbb::global_control::max_allowed_parallelism, job.threads);
}

bool JobScene::prepare(std::string& problem) {
  if (!job_.region.empty() && !scene_.setRegion(job_.region, problem)) return false;
  scene_.setResolver(collectionResolver(job_.document.sourceFile));
  if (!job_.classes.empty()) scene_.setClasses(job_.classes);
  return true;
}

} // namespace Zamt::Host
