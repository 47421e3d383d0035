#pragma once

#include "quindle/check/advice/Advisor.h"

#include <string_view>

namespace Zamt {

/// Advises on the text of an "expr", which is a language of its own and is read only when it runs. `where` is
/// the argument that holds the text.
void adviseOnExpressionText(std::string_view text, const QuindleExpr& where, Advisor& advisor);

} // namespace Zamt
