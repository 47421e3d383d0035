#pragma once

#include "rethold/Pointer.h"
#include "rethold/Typename.h"

#include <climits>
#include <functional>
#include <string>

namespace Zamt {

class VManagedObject;

inline constexpr int LowestRank = INT_MIN;
inline constexpr int HighestRank = INT_MAX;

class VManagedObjectIterator {
public:
  virtual ~VManagedObjectIterator() = default;
  virtual bool apply(int rank, const Rethold::StrongPtr<VManagedObject>& object, const std::string& name) = 0;
};

/// Nothing is managed here: no name is found, and a walk meets nobody.
class VManagedObject {
public:
  using Callback = std::function<bool(int, const Rethold::StrongPtr<VManagedObject>&, const std::string&)>;

  virtual ~VManagedObject() = default;
  std::string name() const { return {}; }

  template <class T>
  static Rethold::StrongPtr<T> find(const std::string& /*name*/) {
    return nullptr;
  }
  static void iterate(Rethold::TypeId /*type*/, const Callback& /*callback*/, int /*lowest*/,
                      int /*highest*/) {}
  static void traverse(Rethold::TypeId /*type*/, VManagedObjectIterator& /*iterator*/, int /*lowest*/,
                       int /*highest*/) {}
};

} // namespace Zamt
