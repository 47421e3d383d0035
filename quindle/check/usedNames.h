#pragma once

#include "quindle/core/QuindleDocument.h"

#include <set>
#include <string_view>

namespace Zamt {

/// The names that the steps of all triggers read: every reference in their expressions, and every word in
/// braces in the text of a report. They belong to the document.
std::set<std::string_view> usedNames(const QuindleDocument& doc);

} // namespace Zamt
