#pragma once

#include "rethold/Export.h"
#include "rethold/Pointer.h"
#include "sorbine/VObject.h"
#include "sorbine/ValuePool.h"

namespace Zamt {

/// The deferred work of the scene: which objects are due to compute.
class QUINDLE_PLATFORM_API VScheduler {
public:
  /// Puts `object` on the schedule, once however often it is asked for. There is no clock here: whatever the
  /// delay in seconds, the next round takes it. An object that is in no graph is ignored.
  static void schedule(const Rethold::StrongPtr<VObject>& object, double delay,
                       const Rethold::StrongPtr<ValuePool>& pool);

  /// Runs one round: all objects that are due, and those that become due meanwhile, in the order of their
  /// creation, but none twice: what is due again waits for the next round. So a change runs down a chain of
  /// any length in one round, and a graph that keeps itself busy cannot keep the round. Returns the number of
  /// objects that computed, 0 if nothing was due. The seconds that a round may take make no difference here.
  static int execute(double seconds);
};

} // namespace Zamt
