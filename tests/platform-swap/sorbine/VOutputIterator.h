#pragma once

#include "rethold/Pointer.h"
#include "rethold/Typename.h"

namespace Zamt {

class VSlot;

class VOutputIterator {
public:
  virtual ~VOutputIterator() = default;
  virtual bool apply(Rethold::TypeId type, const Rethold::StrongPtr<VSlot>& slot) = 0;
};

} // namespace Zamt
