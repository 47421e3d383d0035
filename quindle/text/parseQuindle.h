#pragma once

#include "quindle/core/Diag.h"
#include "quindle/core/Export.h"
#include "quindle/core/QuindleDocument.h"

#include <string>

namespace Zamt {

/// Reads the text of one Quindle into `doc`, which should be a new document: nothing in it is cleared. `file`
/// names the text in diagnostics and becomes `doc.sourceFile`; nothing is opened.
///
/// Every fault is reported, at its line and column from 1 in bytes. True if the closing brace was reached and
/// `diag` then holds no error, earlier ones included. On false `doc` holds what could be read, for an editor
/// to show; it is no complete Quindle.
QUINDLE_API bool parseQuindle(const std::string& text, const std::string& file, QuindleDocument& doc,
                              Diag& diag);

} // namespace Zamt
