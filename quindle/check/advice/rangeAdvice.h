#pragma once

#include "quindle/check/advice/Advisor.h"
#include "quindle/plan/QuindlePlanNode.h"

namespace Zamt {

/// Advises on a condition with a minimum and a maximum that keeps nothing, or less than whoever wrote only
/// one of them will have meant: the other has a default. `written` is what was planned.
void adviseOnRange(const QuindleExpr& written, const QuindlePlanNode& plan, Advisor& advisor);

} // namespace Zamt
