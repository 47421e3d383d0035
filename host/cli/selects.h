#pragma once

#include "quindle/core/Diag.h"
#include "quindle/core/QuindleDocument.h"
#include "quindle/plan/QuindlePlanNode.h"

#include <vector>

namespace Zamt::Host {

/// One "select" step and what it plans to. The step belongs to the document.
struct PlannedSelect {
  const QuindleStep* step = nullptr;
  bool good = false; ///< The plan may be used.
  QuindlePlanNode plan;
};

/// All "select" steps of all triggers, those inside "if" and "for each" blocks included, in the order of the
/// text.
std::vector<const QuindleStep*> allSelects(const QuindleDocument& document);

/// Plans every "select" of the document. Faults go to `diag`, all of them.
std::vector<PlannedSelect> planSelects(const QuindleDocument& document, Diag& diag);

} // namespace Zamt::Host
