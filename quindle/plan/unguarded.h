#pragma once

#include "quindle/core/Guarded.h"
#include "quindle/core/QuindleDocument.h"
#include "quindle/plan/planQuindle.h"

#include <map>
#include <string>
#include <vector>

namespace Zamt::Unguarded {

bool planPredicate(const QuindleExpr& expression, QuindlePlanNode& plan, Diag& diag, const std::string& file);

std::vector<QuindlePlannedSelect> planQuindle(const QuindleDocument& document, Diag& diag);

bool evaluateQuindleCondition(const QuindleExpr& expression, const QuindleDocument& document,
                              const std::map<std::string, std::string>& params,
                              const std::map<std::string, QuindleValue>& lets, bool& result, Diag& diag);

} // namespace Zamt::Unguarded
