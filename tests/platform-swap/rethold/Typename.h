#pragma once

#include <string>
#include <typeinfo>

namespace Rethold {

struct TypeId {
  const std::type_info* info;
  bool operator==(const TypeId& other) const { return *info == *other.info; }
};

template <class T>
TypeId typeOf() {
  return {&typeid(T)};
}

inline std::string Typename(TypeId type) { return type.info->name(); }

} // namespace Rethold
