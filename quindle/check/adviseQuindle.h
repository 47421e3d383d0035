#pragma once

#include "quindle/core/Diag.h"
#include "quindle/core/Export.h"
#include "quindle/core/QuindleDocument.h"

namespace Zamt {

/// Appends to `diag` warnings on what runs and is probably not meant, and on what compilation will refuse
/// whatever the scene holds, in the very words of the refusal. Each says what to write instead, some in a
/// note of their own right behind. They stand at the lines and columns that the records carry, under the
/// document's `sourceFile`, or its name if that is empty, trigger by trigger in the order of the text.
///
/// Nothing that `checkQuindle` says is repeated, nor what `diag` holds for the same place already, so a
/// caller that wants all passes one Diag to `checkQuindle` or `diagnoseQuindle` first. No error is added but
/// where memory runs out. Whether objects, slots, files and other Quindles exist is not looked at. The cost
/// is linear in the document.
QUINDLE_API void adviseQuindle(const QuindleDocument& doc, Diag& diag);

} // namespace Zamt
