#pragma once

#include "rethold/Export.h"

#include <string>

namespace Zamt {

/// What the user does to a scene, by names.
class QUINDLE_PLATFORM_API TolvenActions {
public:
  /// How an action ended.
  struct QUINDLE_PLATFORM_API Result {
    bool success = false;
    std::string reason; ///< Why not, as a sentence; may be empty.
  };

  /// Attaches the input `slot` of `object` to the output `sourceSlot` of `source`, which has to publish the
  /// type that the input reads. An empty `sourceSlot` takes the output that is called like the input, if its
  /// type fits, or else the first whose type does. An empty `source` detaches the input, and succeeds.
  static Result Attachment(const std::string& object, const std::string& slot, const std::string& source,
                           const std::string& sourceSlot);
};

} // namespace Zamt
