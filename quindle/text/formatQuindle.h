#pragma once

#include "quindle/core/Diag.h"
#include "quindle/core/Export.h"
#include "quindle/core/QuindleDocument.h"

#include <cstdint>
#include <string>
#include <vector>

namespace Zamt {

/// A comment that the canonical layout cannot leave in the block it stands in, or outside of all.
struct QuindleStrayComment {
  std::int32_t line = 0;    ///< On which it begins.
  std::int32_t movedTo = 0; ///< The line of the trigger at whose start it comes to stand; 0 if it is dropped.
};

/// Puts a text into the canonical layout, comments included: reads it into `doc` as `parseQuindle` does, with
/// `file` and `diag` in the same meaning, and writes what was read to `formatted`. Formatting the result
/// again gives the same bytes.
///
/// `strays`, which is overwritten, gets the comments with text that do not stay where they are, in the order
/// of the text; `diag` gets a warning for each that says how to keep it. Whether to take a text that lost
/// some is the caller's decision.
///
/// False after reporting why there is no such text, and then `formatted` is empty: the text has errors,
/// something stands behind its end, it holds what the layout cannot express, or its blocks lie so deep inside
/// one another that the indentation would take more than 256 MiB. `diag` may hold errors from before.
QUINDLE_API bool formatQuindle(const std::string& text, const std::string& file, QuindleDocument& doc,
                               std::string& formatted, std::vector<QuindleStrayComment>& strays, Diag& diag);

} // namespace Zamt
