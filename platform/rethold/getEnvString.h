#pragma once

#include <string>

#if defined(_WIN32)
#define QUINDLE_PLATFORM_API
#else
#define QUINDLE_PLATFORM_API __attribute__((visibility("default")))
#endif

namespace Rethold {

/// The environment variable `name`, or `fallback` if it is not set.
QUINDLE_PLATFORM_API std::string getEnvString(const std::string& name, const std::string& fallback);

} // namespace Rethold
