#pragma once

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

private:
  const Job& job_;
  const Stop& stop_;
  std::optional<tbb::global_control> limit_;
  Scene scene_;
};

} // namespace Zamt::Host
