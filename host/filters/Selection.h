#pragma once

#include "files/Stop.h"
#include "host/clouds/PointCloud.h"
#include "host/clouds/PointMask.h"
#include "host/filters/PointFilter.h"

#include <memory>
#include <string>
#include <vector>

namespace Zamt::Host {

/// One step of a selection. Steps refer to earlier ones by position; the first step of a chain has `source`
/// -1 and starts from all points.
struct SelectionStep {
  int source = -1;
  int other = -1;                                 ///< For a union: the second step; -1 for a filter.
  std::shared_ptr<const PointFilter> filter;      ///< One of these two for a filter, neither for a union
  std::shared_ptr<const CloudFilter> cloudFilter; ///< or for a step that passes its source on.
  bool invert = false; ///< Keeps exactly the points of its source that the filter does not hold at.
};

/// Works out the points that the last step keeps; with no steps, all points. Each filter looks only at the
/// points that its source kept, block by block and blocks in parallel. False when it could not be worked out
/// or was stopped, with a sentence in `problem`.
bool evaluateSelection(const PointCloud& cloud, const std::vector<SelectionStep>& steps, const Stop& stop,
                       PointMask& result, std::string& problem);

} // namespace Zamt::Host
