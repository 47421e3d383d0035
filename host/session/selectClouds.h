#pragma once

#include "host/session/runClouds.h"

#include <cstdint>
#include <functional>
#include <string>

namespace Zamt::Host {

/// The points that a condition holds for in one cloud.
struct Selected {
  std::string cloud;
  std::string output; ///< Where they were written; empty for nowhere.
  bool ok = false;
  Failure failure = Failure::None; ///< If it is not ok.
  std::uint64_t points = 0;        ///< Of the cloud.
  std::uint64_t kept = 0;          ///< Of these, how many it holds for.
};

/// Who is told what a selection comes to.
struct SelectWatch {
  const Stop& stop;  ///< Once this is requested the work ends, and the cloud at hand is not written.
  Progress progress; ///< May be null.
  /// Takes what came of each cloud, in their order, as soon as it is there.
  std::function<void(Selected, Diag)> finished;
  /// Takes what is to be said of all clouds together, if anything, before the first; may be null.
  std::function<void(Diag)> noticed{};
};

/// Counts, in each cloud of a job in turn, the points that the condition of its document's first step, a
/// "select", holds for, and writes them where the cloud has an output. Classes are not changed. A cloud that
/// fails is not written, and the next ones are still looked at. When the classes of the clouds can't be
/// brought together, errors are noticed and no cloud is worked on. False with a sentence in `problem`, and
/// nothing done, when the region can't be used.
bool selectClouds(const Job& job, const SelectWatch& watch, std::string& problem);

} // namespace Zamt::Host
