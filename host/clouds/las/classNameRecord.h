#pragma once

#include "host/clouds/ClassName.h"
#include "host/clouds/las/LasEdits.h"
#include "host/clouds/las/LasFile.h"

#include <string>
#include <vector>

namespace Zamt::Host {

/// Enters names of classes into the classification lookup record of a file, which is enlarged, or added
/// behind all VLRs, where it has no room. A name for a number that has one replaces it. False, with a
/// sentence in `error`, when a name or number can't be held.
bool enterClassNames(const LasFile& input, const std::vector<ClassName>& names, LasEdits& edits,
                     std::string& error);

} // namespace Zamt::Host
