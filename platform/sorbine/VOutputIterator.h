#pragma once

#include "rethold/Export.h"
#include "rethold/Pointer.h"
#include "rethold/Typename.h"

namespace Zamt {

class VSlot;

/// What a walk over an object's outputs calls.
class QUINDLE_PLATFORM_API VOutputIterator {
public:
  virtual ~VOutputIterator();

  /// Takes one output and the type of its value, "void" if it has none; false ends the walk.
  virtual bool apply(Rethold::TypeId type, const Rethold::StrongPtr<VSlot>& slot) = 0;
};

} // namespace Zamt
