#include "rethold/Typename.h"

#include <cstdlib>
#include <cxxabi.h>
#include <memory>

namespace Rethold {

std::string Typename(TypeId type) {
  int status = 0;
  const std::unique_ptr<char, decltype(&std::free)> name(
      abi::__cxa_demangle(type.name(), nullptr, nullptr, &status), &std::free);
  return name ? name.get() : type.name();
}

} // namespace Rethold
