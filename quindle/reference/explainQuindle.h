#pragma once

#include "quindle/core/Export.h"
#include "quindle/core/QuindleDocument.h"

#include <string>

namespace Zamt {

/// What a Quindle will do, in plain words and without a scene: what it needs, and its steps with the
/// conditions of each "select" in the order in which they really run. What is wrong in the document is told
/// in the step concerned; this never fails, but
/// lets std::bad_alloc through.
///
/// `resolver` finds the Quindles that it runs, and may be empty. It is asked at most once for each name.
QUINDLE_API std::string explainQuindle(const QuindleDocument& doc, const QuindleResolver& resolver);

} // namespace Zamt
