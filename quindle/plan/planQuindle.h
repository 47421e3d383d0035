#pragma once

#include "quindle/core/Diag.h"
#include "quindle/core/Export.h"
#include "quindle/core/QuindleDocument.h"
#include "quindle/plan/QuindlePlanNode.h"

#include <cstddef>
#include <cstdint>
#include <vector>

/// @file
/// The plans of a whole Quindle, for showing them and for finding what is wrong in them before a run.
namespace Zamt {

/// One "select" and its plan.
struct QUINDLE_API QuindlePlannedSelect {
  const QuindleStep* step = nullptr; ///< Belongs to the document.
  bool good = false;                 ///< The plan may be used.
  QuindlePlanNode plan;              ///< What `planPredicate` made of its condition.
};

/// Plans the condition of every "select" of all triggers, those inside "if" and "for each" blocks included,
/// in the order of the text. All faults are reported, in the document's `sourceFile`. Empty, after an error,
/// if memory runs out.
QUINDLE_API std::vector<QuindlePlannedSelect> planQuindle(const QuindleDocument& document, Diag& diag);

/// One node of a plan as a line of a listing.
struct QUINDLE_API QuindlePlanLine {
  const QuindlePlanNode* node = nullptr; ///< Belongs to the plan.
  std::size_t depth = 0;                 ///< How many nodes are around it.
  std::uint32_t cost = 0;                ///< What `QuindlePlanNode::cost` says.
};

/// The nodes of a good plan, each before its children. Takes linear time, where asking every node for its
/// cost would take the square of the depth. Lets std::bad_alloc through.
QUINDLE_API std::vector<QuindlePlanLine> quindlePlanLines(const QuindlePlanNode& plan);

} // namespace Zamt
