#include "quindle/library/entryNames.h"

#include "quindle/core/AsciiText.h"

namespace Zamt {

const std::string& displayName(const QuindleLibraryEntry& entry) {
  return entry.document.name.empty() ? entry.path : entry.document.name;
}

const QuindleLibraryEntry* findQuindleLoosely(const QuindleLibrary& library, const std::string& name) {
  if (const QuindleLibraryEntry* const exact = library.find(name)) return exact;
  const std::string wanted = lowered(name);
  for (const QuindleLibraryEntry* const entry : library.search({}))
    if (lowered(displayName(*entry)) == wanted) return entry;
  return nullptr;
}

} // namespace Zamt
