#include "sorbine/VScheduler.h"

#include "sorbine/VGraph.h"

namespace Zamt {

void VScheduler::schedule(const Rethold::StrongPtr<VObject>& object, double /*delay*/,
                          const Rethold::StrongPtr<ValuePool>& /*pool*/) {
  if (object) VGraph::get().schedule(*object);
}

int VScheduler::execute(double /*seconds*/) { return VGraph::get().execute(); }

} // namespace Zamt
