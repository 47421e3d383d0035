#pragma once

#include "quindle/core/Diag.h"
#include "quindle/core/Export.h"
#include "quindle/core/QuindleDocument.h"

#include <string>

namespace Zamt {

/// Everything that is wrong or doubtful in a text before it runs: what `parseQuindle` says, with a note where
/// a sign of another language stands for a word of this one, and of a text that parses then what
/// `checkQuindle` says and what planning each condition says. `file` stands in front of each. What is
/// probably not meant is for `adviseQuindle` to say.
///
/// `doc` is overwritten with what could be read. True if there are no errors; those that stood in `diag`
/// before do not count. No scene is touched, so that an editor can ask with every keystroke.
QUINDLE_API bool diagnoseQuindle(const std::string& text, const std::string& file, QuindleDocument& doc,
                                 Diag& diag);

} // namespace Zamt
