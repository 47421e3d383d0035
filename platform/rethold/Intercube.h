#pragma once

#include "rethold/Export.h"

namespace Rethold {

/// What surrounds the making of an object. A default-constructed one is the empty context, the only one that
/// this graph knows.
struct QUINDLE_PLATFORM_API Intercube {};

} // namespace Rethold
