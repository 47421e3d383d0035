#pragma once

#include "host/verbs/Answer.h"
#include "quindle/library/QuindleLibrary.h"

#include <memory>
#include <vector>

namespace Zamt::Host {

/// Some Quindles of a collection.
struct FoundEntries {
  std::shared_ptr<const QuindleLibrary> library;
  std::vector<const QuindleLibraryEntry*> entries; ///< Of the library.
};

/// Tells of them: as a table with name, category, keys, where each comes from and whether it can be run or
/// why not; as data, what the help of the verbs that list Quindles names.
Part entriesPart(Diag diag, FoundEntries found);

} // namespace Zamt::Host
