#pragma once

#include "quindle/core/Export.h"
#include "quindle/library/QuindleLibrary.h"

#include <string>

/// @file
/// The names by which people and Quindles call the entries of a collection. std::bad_alloc passes through.
namespace Zamt {

/// What to call an entry: the name of its document, or its path if that is empty. It is the entry's own text.
QUINDLE_API const std::string& displayName(const QuindleLibraryEntry& entry);

/// The entry of exactly this name, or else the first whose name is the same but for the case of ASCII
/// letters; null if there is none. It is good as long as what `QuindleLibrary::find` returns.
QUINDLE_API const QuindleLibraryEntry* findQuindleLoosely(const QuindleLibrary& library,
                                                          const std::string& name);

} // namespace Zamt
