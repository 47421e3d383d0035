#pragma once

#include "quindle/check/advice/Advisor.h"

#include <cstdint>

namespace Zamt {

/// Advises on a step that acts on objects: a "create", "set", "connect" or "call". `ifLine` is the line of
/// the "if" around it, 0 for none.
void adviseOnObjects(const QuindleStep& step, std::int32_t ifLine, Advisor& advisor);

/// Advises on a step that nothing can run yet.
void adviseOnRefused(const QuindleStep& step, Advisor& advisor);

} // namespace Zamt
