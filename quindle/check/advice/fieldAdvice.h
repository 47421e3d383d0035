#pragma once

#include "quindle/check/advice/Advisor.h"
#include "quindle/plan/QuindlePlanNode.h"

#include <optional>
#include <string>
#include <string_view>

namespace Zamt {

/// Advises on the fields that a condition of a "select" names, as `written` and as planned.
void adviseOnFields(const QuindleExpr& written, const QuindlePlanNode& plan, Advisor& advisor);

/// Whether the word is one of the coordinates that the text of an "expr" has beside the fields.
bool isCoordinate(std::string_view word);

/// The known field whose name differs from `name` in case only.
std::optional<std::string> fieldInOtherCase(std::string_view name);

} // namespace Zamt
