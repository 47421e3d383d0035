#pragma once

#include "quindle/core/Diag.h"
#include "quindle/core/QuindleDocument.h"

#include <map>
#include <string>

namespace Zamt::Host {

/// Whether values that a user wrote are of parameters that a Quindle has, and such as these take, as far as
/// that can be told without a scene. False with an error in `diag` for each that is not.
bool checkValues(const QuindleDocument& document, const std::map<std::string, std::string>& values,
                 Diag& diag);

} // namespace Zamt::Host
