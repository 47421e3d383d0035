#pragma once

#include "rethold/Export.h"
#include "rethold/Pointer.h"

#include <functional>

namespace Zamt {

class VParameter;
class ValuePool;

/// What a button carries out. It is the value of an action slot.
class QUINDLE_PLATFORM_API VAction {
public:
  using Callback = std::function<void(const Rethold::StrongPtr<ValuePool>& pool,
                                      const Rethold::StrongPtr<VParameter>& parameter)>;

  /// An action that calls `callback`; an empty one does nothing.
  explicit VAction(Callback callback);

  /// Carries the action out, at once. `parameter` is that of the slot that was fired.
  void emitAction(const Rethold::StrongPtr<ValuePool>& pool,
                  const Rethold::StrongPtr<VParameter>& parameter) const;

private:
  Callback callback_;
};

} // namespace Zamt
