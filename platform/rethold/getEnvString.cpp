#include "rethold/getEnvString.h"

#include <cstdlib>

namespace Rethold {

std::string getEnvString(const std::string& name, const std::string& fallback) {
  const char* const value = std::getenv(name.c_str());
  return value ? value : fallback;
}

std::string getEnvString(const std::string& name, std::nullptr_t /*fallback*/) {
  return getEnvString(name, std::string());
}

} // namespace Rethold
