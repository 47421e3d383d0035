#pragma once

#include "host/session/Progress.h"
#include "host/session/Scene.h"
#include "host/session/runClouds.h"

#include <oneapi/tbb/global_control.h>

#include <optional>
#include <string>

namespace Zamt::Host {

/// A scene that is ready for the clouds of a job, with as many threads as the job wants while it lives.
class JobScene {
public:
  /// Waits for the turn of the scene. `stop` must outlive it.
  JobScene(const Job& job, const Stop& stop);

  /// Keeps the scene to what the job names. False with a sentence in `problem` when the region can't be used.
  bool prepare(std::string& problem);

  /// Gives the scene the classes that the clouds of the job have together, and `diag` what is to be said of
  /// them. False with errors when the job can't be carried out because of them, or was stopped.
  bool findClasses(Diag& diag);

  Scene& scene() { return scene_; }

  /// Opens one of the clouds of the job, and tells `progress` from now on how far the work on it is, of which
  /// there are some `passes` over its points.
  bool openCloud(std::size_t index, const Progress& progress, double passes, Diag& diag);

  /// Adds to `diag` what is doubtful in what was asked of the cloud, and takes from it what was told
  /// before and, unless the job wants it, what objects of the scene said in passing.
  void finishDiag(const JobCloud& cloud, Diag& diag) const;

private:
  bool isWanted(const Diag::Entry& entry) const;

  const Job& job_;
  const Stop& stop_;
  std::optional<tbb::global_control> limit_;
  Scene scene_;
};

} // namespace Zamt::Host
