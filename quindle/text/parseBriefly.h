#pragma once

#include "quindle/core/Diag.h"
#include "quindle/core/QuindleDocument.h"

#include <string>

namespace Zamt {

/// Reads a text as `parseQuindle` does, to the same document and result, but reports nothing behind the first
/// error. `diag` has to be empty.
bool parseBriefly(const std::string& text, const std::string& file, QuindleDocument& doc, Diag& diag);

} // namespace Zamt
