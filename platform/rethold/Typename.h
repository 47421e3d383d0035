#pragma once

#include "rethold/Export.h"

#include <string>
#include <typeindex>

namespace Rethold {

/// Stands for a C++ type at run time: comparable, and the same in every library.
using TypeId = std::type_index;

/// The `TypeId` of `T`.
template <class T>
TypeId typeOf() {
  return TypeId(typeid(T));
}

/// The readable C++ name of a type, with namespaces and template arguments; "void" means no type.
QUINDLE_PLATFORM_API std::string Typename(TypeId type);

} // namespace Rethold
