#pragma once

#include "quindle/core/Guarded.h"
#include "quindle/core/QuindleDocument.h"

namespace Zamt::Unguarded {

bool checkQuindle(const QuindleDocument& doc, Diag& diag);

} // namespace Zamt::Unguarded
