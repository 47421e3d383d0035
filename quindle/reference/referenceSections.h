#pragma once

#include "quindle/reference/QuindleReference.h"

#include <vector>

namespace Zamt {

/// Writes the reference: its sections in order. Prose is one paragraph to a line, and a word of the language
/// stands in it between two blanks.
std::vector<QuindleReferenceSection> makeReferenceSections();

} // namespace Zamt
