#pragma once

#include "quindle/library/QuindleLibrary.h"

#include <string>
#include <vector>

namespace Zamt {

/// What is on disk now in the directories of a search path, found without a word about files that are hidden
/// or broken. Lets std::bad_alloc through, since a library that lacks a file for want of memory would look
/// as if there were none.
QuindleLibrary scannedQuindles(const std::vector<std::string>& searchPath);

} // namespace Zamt
