#include "host/session/runClouds.h"
#include "tests/session/scenes.h"
#include "tests/support/environment.h"

#include <utility>
#include <vector>

namespace Zamt::Testing {
namespace {

using Host::ClassChange;
using Host::ClassMove;
using Host::Job;
using Host::Outcome;

/// What a run and its preview have to agree on.
std::string told(const Outcome& outcome, const Diag& diag) {
  std::string text = outcome.ok ? "good\n" : "failed\n";
  for (const std::string& line : outcome.report) text += line + '\n';
  for (const std::string& file : outcome.files) text += "file " + file + '\n';
  for (const ClassChange& change : outcome.changes)
    text += change.editor + ' ' + std::to_string(change.target) + ' ' + change.targetName + ' ' +
            std::to_string(change.modified) + " of " + std::to_string(change.considered) + '\n';
  for (const ClassMove& move : outcome.moves)
    text += std::to_string(move.from) + " to " + std::to_string(move.to) + ' ' + std::to_string(move.points) +
            '\n';
  for (const Diag::Entry& entry : diag.entries) text += entry.message + '\n';
  return text;
}

class DryRun : public SceneTest {
public:
  std::string resultOf(Job job, const std::string& cloud, const std::string& output) {
    job.clouds = {{cloud, output}};
    std::string text;
    std::string problem;
    const auto finished = [&](const Outcome& outcome, const Diag& diag) { text += told(outcome, diag); };
    EXPECT_TRUE(runClouds(job, {goOn, {}, finished}, problem)) << problem;
    return text;
  }

  /// Every cloud that is there, readable or not.
  std::vector<std::string> clouds() const {
    std::vector<std::string> files{sample(20000), path("none.las")};
    if (std::filesystem::exists(QUINDLE_TEST_DATA))
      for (const auto& entry : std::filesystem::directory_iterator(QUINDLE_TEST_DATA))
        if (entry.path().extension() == ".las") files.push_back(entry.path());
    return files;
  }

  /// Runs each and previews it, and returns how many runs were good.
  std::size_t compare(const std::vector<Job>& jobs) {
    std::size_t good = 0;
    for (const std::string& cloud : clouds())
      for (const Job& job : jobs) {
        SCOPED_TRACE(job.document.name + " on " + cloud);
        const std::set<std::string> before = names();
        const std::string previewed = resultOf(job, cloud, {});
        EXPECT_EQ(names(), before);
        const std::string run = resultOf(job, cloud, path("out.las"));
        EXPECT_EQ(previewed, run);
        good += run.starts_with("good") ? 1 : 0;
        std::filesystem::remove(path("out.las"));
        std::filesystem::remove(path("drawn.png"));
      }
    return good;
  }

private:
  Environment environment_{
      {"APPDATA", {}}, {"XDG_DATA_HOME", {}}, {"HOME", path()}, {"QUINDLE_DATA_DIRS", path("share")}};
};

TEST_F(DryRun, ComesToWhatARunOfAnyExampleComesToAndWritesNothing) {
  std::vector<Job> jobs;
  for (const auto& entry : std::filesystem::directory_iterator(QUINDLE_SOURCE_DIR "/examples")) {
    if (entry.path().extension() != ".quindle") continue;
    Job job;
    job.document = parsed(readFile(entry.path()), entry.path());
    if (job.document.findParam("water") != nullptr) job.values["water"] = path("lake-water.ply");
    jobs.push_back(std::move(job));
  }
  EXPECT_GE(compare(jobs), jobs.size());
}

TEST_F(DryRun, LetsLaterStepsSeeEarlierOnesAndHoldsBackOnlyFiles) {
  const std::vector<std::pair<std::string, std::string>> steps{
      {"Raised", "select z > 410 classify into \"Water\" select class(\"Water\") classify into \"Rail\""},
      {"Drawn", "create eye = \"Display/Picture\" connect eye.grid <- Cloud set eye.file = \"" +
                    path("drawn.png") + "\" classify into \"Rail\" call eye.save"},
      {"No file", "create eye = \"Display/Picture\" connect eye.grid <- Cloud call eye.save"}};
  std::vector<Job> jobs;
  for (const auto& [name, text] : steps) {
    Job job;
    job.document =
        parsed("quindle \"" + name + "\" { param cloud : Grid = active on run {\n" + text + "\n} }");
    jobs.push_back(std::move(job));
  }
  EXPECT_GE(compare(jobs), jobs.size());
  Job drawn = jobs[1];
  EXPECT_NE(resultOf(drawn, sample(), {}).find("file " + path("drawn.png")), std::string::npos);
  EXPECT_FALSE(names().contains("drawn.png"));
  resultOf(drawn, sample(), path("out.las"));
  EXPECT_TRUE(names().contains("drawn.png"));
}

} // namespace
} // namespace Zamt::Testing
