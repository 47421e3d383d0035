#pragma once

#include "quindle/core/Diag.h"
#include "quindle/core/QuindleDocument.h"

#include <string>

namespace Zamt::Host {

/// What diagnostics call the text of a condition that stands by itself.
inline constexpr const char* conditionLabel = "condition";

/// Makes a whole Quindle of one condition: it selects the points that it holds for and puts them into the
/// class of that name or number, or, if that is empty, into "Counted" under a comment that says to change it.
/// The numbers in the condition that say how much, how far and how many become parameters with these numbers
/// as defaults, and a word that stands for a number, a surface or a region becomes one without.
///
/// False, with everything that is wrong in `diag` at its place in the condition, when it is none. Advice on
/// one that can be used is in `diag` too.
bool quindleOfCondition(const std::string& condition, const std::string& className, QuindleDocument& document,
                        Diag& diag);

} // namespace Zamt::Host
