#pragma once

#include "quindle/core/Diag.h"
#include "quindle/library/QuindleLibrary.h"

#include <string>

namespace Zamt::Host {

/// The Quindles in the user's directory and in those of the installation, as they are now, found by name.
/// Directories that are not there are passed over. Notes in `diag` name the files that are hidden by others;
/// warnings, those that can't be used.
QuindleLibrary scanCollection(Diag& diag);

/// The same without a word.
QuindleLibrary scanCollection();

/// The entry of that name, the case of letters ignored if need be. Null, with an error in `diag` that offers
/// the nearest names, if there is none.
const QuindleLibraryEntry* findInCollection(const QuindleLibrary& library, const std::string& name,
                                            Diag& diag);

/// The sentence that offers the names nearest to `name`, with a blank in front; empty if none is near.
std::string nearestInCollection(const QuindleLibrary& library, const std::string& name);

/// Whether the file is the user's, and not part of the installation.
bool isOwn(const QuindleLibraryEntry& entry);

/// For "run" steps: finds Quindles in the collection, which is scanned at the first look-up, and else among
/// those that lie beside `file`, the file of the Quindle that is run.
QuindleResolver collectionResolver(const std::string& file);

/// Whether a Quindle called `name` may be saved in the user's directory: the file that it would go to is not
/// there or does not hold another one. False with an error in `diag`.
bool hasOwnPlace(const std::string& name, Diag& diag);

} // namespace Zamt::Host
