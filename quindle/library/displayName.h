#pragma once

#include "quindle/library/QuindleLibrary.h"

#include <string>

namespace Zamt {

/// What to call an entry: the name of its document, or its path if that is empty.
inline const std::string& displayName(const QuindleLibraryEntry& entry) {
  return entry.document.name.empty() ? entry.path : entry.document.name;
}

} // namespace Zamt
