#pragma once

#include "rethold/Pointer.h"

namespace Zamt {

class VParameter;
class ValuePool;

class VAction {
public:
  void emitAction(const Rethold::StrongPtr<ValuePool>& /*pool*/,
                  const Rethold::StrongPtr<VParameter>& /*parameter*/) const {}
};

} // namespace Zamt
