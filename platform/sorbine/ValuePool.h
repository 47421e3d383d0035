#pragma once

#include "rethold/Export.h"

namespace Zamt {

/// The context in which values are read and written. This graph needs none: a pool has no state, and null
/// will do as well.
class QUINDLE_PLATFORM_API ValuePool {};

} // namespace Zamt
