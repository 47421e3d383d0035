#pragma once

#include "files/Stop.h"
#include "host/clouds/PointCloud.h"
#include "host/clouds/PointMask.h"
#include "host/filters/PointFilter.h"

#include <atomic>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace Zamt::Host {

/// What in the world a step asks about.
struct StepPlace {
  std::string what; ///< "the surface \"lake.ply\"".
  Bounds box;       ///< Around it; infinite in directions that don't matter, empty where nothing is known.
  mutable std::atomic<bool> isNear{false}; ///< A block or a point was found to be near it.

  StepPlace(std::string name, const Bounds& around) : what(std::move(name)), box(around) {}
};

/// One step of a selection. Steps refer to earlier ones by position; the first step of a chain has `source`
/// -1 and starts from all points.
struct SelectionStep {
  int source = -1;
  int other = -1;                                 ///< For a union: the second step; -1 for a filter.
  std::shared_ptr<const PointFilter> filter;      ///< One of these two for a filter, neither for a union
  std::shared_ptr<const CloudFilter> cloudFilter; ///< or for a step that passes its source on.
  bool invert = false; ///< Keeps exactly the points of its source that the filter does not hold at.
  std::shared_ptr<const StepPlace> place{}; ///< Null where the filter asks about none.
};

/// Works out the points that the last step keeps; with no steps, all points. Each filter looks only at the
/// points that its source kept, block by block and blocks in parallel. False when it could not be worked out
/// or was stopped, with a sentence in `problem`.
bool evaluateSelection(const PointCloud& cloud, const std::vector<SelectionStep>& steps, const Stop& stop,
                       PointMask& result, std::string& problem);

/// Tells, of steps that were evaluated, which ask about a place that no block of the cloud touches: a
/// sentence for each, with both boxes, is added to `warnings`. Points are looked at only where the evaluation
/// met none that are near. False when it was stopped or a block can't be read, with a sentence in `problem`.
bool findFarPlaces(const PointCloud& cloud, const std::vector<SelectionStep>& steps, const Stop& stop,
                   std::vector<std::string>& warnings, std::string& problem);

} // namespace Zamt::Host
