#include "host/session/JobScene.h"

#include "host/session/ClassTable.h"
#include "host/session/Collection.h"
#include "quindle/core/QuindleNodes.h"

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

/// What offers another Quindle in place of one that a "run" step names and nobody has; empty for all else.
std::string offerFor(const Diag::Entry& entry) {
  constexpr std::string_view missing = "\", and there is no Quindle of that name.";
  const std::string& message = entry.message;
  if (!message.ends_with(missing)) return {};
  const std::size_t end = message.size() - missing.size();
  const std::size_t begin = message.rfind('"', end - 1) + 1;
  return nearestInCollection(scanCollection(), message.substr(begin, end - begin));
}

bool runsOthers(const QuindleDocument& document) {
  return std::ranges::any_of(quindleSteps(document),
                             [](const QuindleStep* step) { return step->kind == QuindleStep::Kind::Run; });
}

/// The file that an entry is about. A place without a file is one in the Quindle that is run, if there is no
/// other that it might be in.
const std::string& fileOf(const Diag::Entry& entry, const QuindleDocument& document) {
  const bool lacksFile = entry.file.empty() && entry.line != 0;
  return lacksFile && !runsOthers(document) ? document.sourceFile : entry.file;
}

} // namespace

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
  for (const Diag::Entry& entry : diag.entries) {
    if (!isWanted(entry)) continue;
    kept.at(entry.severity, entry.message, fileOf(entry, job_.document), entry.line, entry.column);
    if (const std::string offer = offerFor(entry); !offer.empty()) kept.note(offer.substr(1), entry.file);
  }
  if (const auto grid = scene_.grid())
    for (const std::string& warning : grid->warnings) kept.warning(warning, cloud.file);
  diag = std::move(kept);
}

} // namespace Zamt::Host
