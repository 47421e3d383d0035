#pragma once

#include "quindle/plan/QuindlePlanNode.h"

#include <algorithm>
#include <cstdint>

namespace Zamt {

/// What an And or Or costs, once a member of cost `cost` comes to those that cost `soFar`: an And the least
/// of them and an Or the most. A cost so far of 0 counts as none.
constexpr std::uint32_t combinedCost(QuindlePlanNode::Kind kind, std::uint32_t soFar, std::uint32_t cost) {
  if (kind == QuindlePlanNode::Kind::Or) return std::max(soFar, cost);
  return soFar == 0 ? cost : std::min(soFar, cost);
}

} // namespace Zamt
