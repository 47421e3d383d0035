#pragma once

#include "quindle/core/Export.h"
#include "quindle/core/QuindleDocument.h"

#include <string>
#include <vector>

namespace Zamt {

/// The keys that a Quindle asks for, in its setting or its triggers, in their normal form, each once, in the
/// order of the text. Whether it can be run does not matter here. Lets std::bad_alloc through.
QUINDLE_API std::vector<std::string> keysOf(const QuindleDocument& document);

} // namespace Zamt
