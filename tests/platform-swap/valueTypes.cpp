#include "sorbine/VValue.h"

namespace Zamt {
namespace {

int count = 0;

} // namespace

void VValueCreator::registerCreator(const std::string& name,
                                    const Rethold::StrongPtr<VValueCreator>& creator) {
  if (!name.empty() && creator) ++count;
}

int VValueCreator::registered() { return count; }

} // namespace Zamt
