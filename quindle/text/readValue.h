#pragma once

#include "quindle/core/QuindleDocument.h"
#include "quindle/text/TokenReader.h"

namespace Zamt {

/// Reads a literal into `out`, which is a new value. What is none is reported, stays unread and leaves `out`
/// of kind None.
void readValue(TokenReader& tokens, QuindleValue& out);

} // namespace Zamt
