#pragma once

#include "quindle/core/Diag.h"
#include "quindle/core/Export.h"
#include "quindle/core/QuindleDocument.h"

namespace Zamt {

/// Appends to `diag` what is wrong (errors) or doubtful (warnings) in a document, judged by itself: whether a
/// condition, a creator or a slot exists is not looked at. All of it is found in one go, in a fixed order, at
/// the lines that the records carry and under the document's `sourceFile`, or its name if that is empty.
///
/// True if it added no error; errors that `diag` held before do not count.
QUINDLE_API bool checkQuindle(const QuindleDocument& doc, Diag& diag);

} // namespace Zamt
