#pragma once

#include "quindle/core/QuindleDocument.h"

#include <cstdint>
#include <string>

namespace Zamt {

/// Writes to `out` as `writeQuindle` does. False, with a text cut short, if the blanks in front of the steps
/// would take more than `maxIndentation` bytes: those grow with the square of the depth.
bool writeWithin(const QuindleDocument& doc, std::uint64_t maxIndentation, std::string& out);

} // namespace Zamt
