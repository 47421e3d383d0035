#include "host/session/JobScene.h"

#include "host/session/ClassTable.h"
#include "host/session/Collection.h"

namespace Zamt::Host {

JobScene::JobScene(const Job& job, const Stop& stop) : job_(job), stop_(stop), scene_(stop) {
  if (job.threads != 0) limit_.emplace(tbb::global_control::max_allowed_parallelism, job.threads);
}

bool JobScene::prepare(std::string& problem) {
  if (!job_.region.empty() && !scene_.setRegion(job_.region, problem)) return false;
  scene_.setResolver(collectionResolver(job_.document.sourceFile));
  if (!job_.classes.empty()) scene_.setClasses(job_.classes);
  return true;
}

bool JobScene::findClasses(Diag& diag) {
  std::vector<std::string> files;
  for (const JobCloud& cloud : job_.clouds) files.push_back(cloud.file);
  std::vector<SaidClass> said = saidClasses(job_.document, job_.values, scene_.runtime().resolver);
  sayClasses(job_.classes, said);
  const auto findUse = [&](ClassUse& use) { return addClassUse(files, stop_, use); };
  LabelSet labels;
  const bool good = makeClassTable(classesOfFiles(files, stop_), said, findUse, labels, diag);
  if (stop_.requested()) diag.error(stoppedMessage);
  scene_.setLabels(std::move(labels));
  return good && !stop_.requested();
}

} // namespace Zamt::Host
