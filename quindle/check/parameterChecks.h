#pragma once

#include "quindle/check/Findings.h"
#include "quindle/core/QuindleDocument.h"

namespace Zamt {

/// Checks all parameters: their ranges, defaults and help texts one by one, then which of them nothing reads.
void checkParameters(const QuindleDocument& doc, Findings& findings);

} // namespace Zamt
