#pragma once

#include "rethold/Export.h"

#include <string>

namespace Rethold {

/// The environment variable `name`, or `fallback` if it is not set.
QUINDLE_PLATFORM_API std::string getEnvString(const std::string& name, const std::string& fallback);

/// The environment variable `name`, or empty text if it is not set.
QUINDLE_PLATFORM_API std::string getEnvString(const std::string& name, std::nullptr_t fallback);

} // namespace Rethold
