#pragma once

#include <cstddef>
#include <cstdlib>
#include <string>

namespace Rethold {

inline std::string getEnvString(const std::string& name, std::nullptr_t /*fallback*/) {
  const char* const value = std::getenv(name.c_str());
  return value ? value : std::string();
}

} // namespace Rethold
