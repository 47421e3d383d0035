#pragma once

#include "quindle/core/AsciiText.h"
#include "quindle/library/QuindleLibrary.h"

#include <string>

namespace Zamt {

/// What to call an entry: the name of its document, or its path if that is empty.
inline const std::string& displayName(const QuindleLibraryEntry& entry) {
  return entry.document.name.empty() ? entry.path : entry.document.name;
}

/// The entry of exactly this name, or else the first whose name is the same but for the case of ASCII
/// letters; null if there is none.
inline const QuindleLibraryEntry* findQuindleLoosely(const QuindleLibrary& library, const std::string& name) {
  if (const QuindleLibraryEntry* const exact = library.find(name)) return exact;
  const std::string wanted = lowered(name);
  for (const QuindleLibraryEntry* const entry : library.search({}))
    if (lowered(displayName(*entry)) == wanted) return entry;
  return nullptr;
}

} // namespace Zamt
