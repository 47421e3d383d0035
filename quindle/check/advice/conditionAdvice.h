#pragma once

#include "quindle/check/advice/Advisor.h"
#include "quindle/check/advice/KeptConditions.h"

#include <optional>
#include <string>
#include <vector>

namespace Zamt {

/// What a "select" keeps, as far as the steps behind it need to know.
struct SelectedPoints {
  KeptConditions conditions;
  std::vector<std::string> classes; ///< Written out in conditions that every point has to meet.
};

/// Advises on the condition of one "select". Nothing if it is refused in any scene; all reasons have been
/// said then.
std::optional<SelectedPoints> adviseOnCondition(const QuindleExpr& condition, Advisor& advisor);

} // namespace Zamt
