#pragma once

#include "quindle/core/Diag.h"

#include <string>
#include <string_view>
#include <vector>

namespace Zamt::Host {

/// Those of `names` that someone who wrote `wanted` may have meant: a slip of the finger away from it,
/// whatever the case of letters, or with it inside. The best first, three at most.
std::vector<std::string> nearestNames(std::string_view wanted, const std::vector<std::string>& names);

/// The sentence that offers them, with a blank in front: " Did you mean \"class\"?" Empty if none is near.
std::string didYouMean(std::string_view wanted, const std::vector<std::string>& names);

/// The same diagnostics, each that calls a word unknown and lists those that are known with a note behind it
/// that offers the nearest of them.
Diag withNearestNames(const Diag& diag);

} // namespace Zamt::Host
