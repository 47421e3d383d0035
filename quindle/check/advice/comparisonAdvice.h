#pragma once

#include "quindle/check/advice/Advisor.h"

namespace Zamt {

/// Advises on a comparison in a "select", which sets the limits of a range and always includes its end: where
/// only whole numbers occur that is one more than "<" and ">" say. Any other expression is left alone.
void adviseOnComparison(const QuindleExpr& compare, Advisor& advisor);

} // namespace Zamt
