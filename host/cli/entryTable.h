#pragma once

#include "host/cli/Console.h"
#include "quindle/library/QuindleLibrary.h"

#include <string>
#include <string_view>
#include <vector>

namespace Zamt::Host {

/// Prints rows of cells in columns under their titles. Control characters in a cell, which a file may bring,
/// are shown as "?".
void printTable(const std::vector<std::string_view>& titles,
                const std::vector<std::vector<std::string>>& rows, Console& console);

/// Prints Quindles of a library: as a table with name, category, keys, where each comes from and whether it
/// can be run or why not; or, if `json`, as JSON together with `diag`.
void printEntries(const QuindleLibrary& library, const std::vector<const QuindleLibraryEntry*>& entries,
                  const Diag& diag, bool json, Console& console);

/// How "--json" of the commands that list Quindles describes itself.
inline constexpr const char* entriesJsonHelp = "Print JSON: \"quindles\" with name, category, description, "
                                               "tags, keys, path, own, usable, enabled, first (of its "
                                               "name) and error of each, and \"diagnostics\".";

} // namespace Zamt::Host
