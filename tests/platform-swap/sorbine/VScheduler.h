#pragma once

#include "rethold/Pointer.h"
#include "sorbine/VObject.h"
#include "sorbine/ValuePool.h"

namespace Zamt {

class VScheduler {
public:
  static void schedule(const Rethold::StrongPtr<VObject>& /*object*/, double /*delay*/,
                       const Rethold::StrongPtr<ValuePool>& /*pool*/) {}
  static int execute(double /*seconds*/) { return 0; }
};

} // namespace Zamt
