#include "cadmer/VAction.h"

#include <utility>

namespace Zamt {

VAction::VAction(Callback callback) : callback_(std::move(callback)) {}

void VAction::emitAction(const Rethold::StrongPtr<ValuePool>& pool,
                         const Rethold::StrongPtr<VParameter>& parameter) const {
  if (callback_) callback_(pool, parameter);
}

} // namespace Zamt
