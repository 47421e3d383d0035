#pragma once

#include "rethold/Pointer.h"
#include "rethold/Typename.h"

#include <string>

namespace Zamt {

template <class T>
struct VValueTrait;

class VValueBase {
public:
  virtual ~VValueBase() = default;
  virtual Rethold::TypeId type() const = 0;
  Rethold::StrongPtr<VValueBase> component(const std::string& /*name*/) const { return nullptr; }
  void touch() {}
};

template <class T>
class VValue : public VValueBase {
public:
  Rethold::TypeId type() const override { return Rethold::typeOf<T>(); }
  T held{};
};

template <class T>
Rethold::StrongPtr<VValue<T>> valueAs(const Rethold::StrongPtr<VValueBase>& value) {
  return std::dynamic_pointer_cast<VValue<T>>(value);
}

/// The one thing that this platform keeps: how many value types were registered.
class __attribute__((visibility("default"))) VValueCreator {
public:
  virtual ~VValueCreator() = default;
  static void registerCreator(const std::string& name, const Rethold::StrongPtr<VValueCreator>& creator);
  static int registered();
};

template <class Value>
class TypedValueCreator : public VValueCreator {};

} // namespace Zamt
