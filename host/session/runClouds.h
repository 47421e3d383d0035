#pragma once

#include "files/HeldFile.h"
#include "files/Stop.h"
#include "host/objects/MaskedLabels.h"
#include "host/session/Progress.h"
#include "quindle/core/Diag.h"
#include "quindle/core/QuindleDocument.h"

#include <cstdint>
#include <functional>
#include <map>
#include <set>
#include <string>
#include <vector>

namespace Zamt::Host {

/// One cloud of a job.
struct JobCloud {
  std::string file;
  std::string output; ///< Where it is written; empty for a preview, which writes no cloud.
};

/// Whether the cloud's output may be written, told before the work. A cloud that is written over itself is
/// held for as long as `held` lasts. False, with an error in `diag`, when it may not, or another program
/// holds the cloud.
bool mayWrite(const JobCloud& cloud, HeldFile& held, Diag& diag);

/// A Quindle, and what it is to be run on.
struct Job {
  QuindleDocument document;
  std::map<std::string, std::string> values; ///< Of its parameters, as the user wrote them.
  std::string region;                        ///< The text of one to keep to; empty for everywhere.
  std::string classes;                       ///< The only ones whose points may change; empty for all.
  unsigned threads = 0;                      ///< 0 for as many as the machine has.
  std::vector<JobCloud> clouds;
  std::string picture;        ///< A PNG file to draw a preview into; empty for none.
  std::set<std::string> told; ///< Sentences that are not to be said again of every cloud, errors excepted.
  bool verbose = false;       ///< What the objects of the scene say in passing is told too.
};

/// With what of the work on a cloud it ended early.
enum class Failure { None, Reading, Running, Writing, Interrupted };

/// How many points went from one class to another.
struct ClassMove {
  std::uint8_t from = 0;
  std::uint8_t to = 0;
  std::uint64_t points = 0;
};

/// What the run on one cloud came to.
struct Outcome {
  std::string cloud;
  bool preview = false;
  std::string output; ///< What was written or drawn; empty for nothing.
  bool ok = false;
  Failure failure = Failure::None; ///< If it is not ok.
  std::vector<std::string> report;
  std::uint64_t points = 0;         ///< Of the cloud.
  std::vector<ClassChange> changes; ///< Of each editor, as it selected last.
  std::vector<ClassMove> moves;     ///< From the file's classes to those at the end, in the order of both.
  std::vector<std::string> files;   ///< That actions wrote, or would have in a preview.
  std::map<std::uint8_t, std::string> classNames; ///< Of the classes that points come from and go to.
};

/// Who is told what a job does.
struct JobWatch {
  const Stop& stop;  ///< Once this is requested the job ends, and the cloud at hand is not written.
  Progress progress; ///< May be null.
  /// Takes what came of each cloud, in their order, as soon as it is there.
  std::function<void(Outcome, Diag)> finished;
  /// Takes what is to be said of all clouds together, if anything, before the first; may be null.
  std::function<void(Diag)> noticed{};
};

/// Runs a Quindle on each cloud in turn. A preview is a run that does all in memory, its actions included,
/// and writes nothing but the picture. A cloud that fails is not written, and the next ones still run. When
/// the classes of the clouds can't be brought together, errors are noticed and no cloud is worked on. False
/// with a sentence in `problem`, and nothing done, when the region can't be used.
bool runClouds(const Job& job, const JobWatch& watch, std::string& problem);

} // namespace Zamt::Host
