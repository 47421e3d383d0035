#pragma once

#include "quindle/check/Findings.h"
#include "quindle/core/QuindleDocument.h"

#include <vector>

namespace Zamt {

/// Checks all parameters: their ranges, defaults and help texts one by one, then which of them nothing reads.
void checkParameters(const QuindleDocument& doc, Findings& findings);

/// The parameters that no expression and no report names, nor a change of the data finds by their type, as
/// far as a trigger's own steps show. They point into the document.
std::vector<const QuindleParam*> unreadParameters(const QuindleDocument& doc);

} // namespace Zamt
