#pragma once

#include "quindle/core/Diag.h"
#include "quindle/core/QuindleDocument.h"

#include <string>

namespace Zamt::Host {

/// Adds what `adviseQuindle` says of a document that was read from `text`. Advice on a step or a parameter as
/// a whole is moved to the word in it that the sentence quotes, where the line shows that word.
void adviseOnText(const QuindleDocument& document, const std::string& text, Diag& diag);

} // namespace Zamt::Host
