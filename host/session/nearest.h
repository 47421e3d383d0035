#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace Zamt::Host {

/// Those of `names` that someone who wrote `wanted` may have meant: a slip of the finger away from it,
/// whatever the case of letters, or with it inside. The best first, three at most.
std::vector<std::string> nearestNames(std::string_view wanted, const std::vector<std::string>& names);

/// The sentence that offers them, with a blank in front: " Did you mean \"class\"?" Empty if none is near.
std::string didYouMean(std::string_view wanted, const std::vector<std::string>& names);

} // namespace Zamt::Host
