#pragma once

#include "rethold/Export.h"
#include "rethold/Pointer.h"
#include "rethold/Typename.h"
#include "sorbine/VManagedObject.h"

#include <string>
#include <vector>

namespace Zamt {

class VCreatorBase;
class VObject;

/// One way in which the objects of a creator can read another object.
struct QUINDLE_PLATFORM_API VAcceptInfo {
  std::string name;     ///< By which a caller asks for this way of reading.
  std::string slot;     ///< The input that reads.
  Rethold::TypeId type; ///< The type of value it reads.

  /// The way of reading values of type `T` through `slot`, called `name` or, without one, like the slot.
  template <class T>
  static VAcceptInfo of(const std::string& slot, const std::string& name = {}) {
    return {name.empty() ? slot : name, slot, Rethold::typeOf<T>()};
  }
};

/// A creator that can read some object, and how.
struct QUINDLE_PLATFORM_API VAcception {
  Rethold::WeakPtr<VCreatorBase> creator;
  VAcceptInfo info;
};

/// What can read an object.
struct QUINDLE_PLATFORM_API VAcceptList {
  std::vector<VAcception> entries; ///< Creators as a walk gives them, each with its ways in their order.

  /// What can read one of the outputs of `object`, of the creators within the ranks; null if nothing can.
  static Rethold::StrongPtr<VAcceptList> getAcceptors(const Rethold::StrongPtr<VObject>& object,
                                                      int lowestRank = LowestRank,
                                                      int highestRank = HighestRank);
};

} // namespace Zamt
