#pragma once

#include "quindle/core/Diag.h"
#include "quindle/core/Export.h"
#include "quindle/core/QuindleDocument.h"

#include <cstdint>
#include <string>
#include <vector>

/// Quindles as files: what a file is called, where it lies, and reading, saving and deleting one by name. The
/// user's directory holds the user's files; all others belong to the installation and are never written.
///
/// Paths are UTF-8 with "/" between components. Nothing is remembered between calls, and two calls on the
/// same files at the same time are not guarded against each other. What takes no Diag lets std::bad_alloc
/// through.
namespace Zamt {

/// The largest file that is taken for a Quindle, inclusive. One is a page or two of text; what is larger is
/// the wrong file.
inline constexpr std::uint64_t maxQuindleBytes = std::uint64_t{256} * 1024 * 1024;

/// The path of the file for a Quindle of that name: `directory` as it stands, "/", the name as
/// `quindleIdentifier` makes it, ".quindle". Different names may share one file.
QUINDLE_API std::string quindleFileName(const std::string& directory, const std::string& name);

/// The directory of the user's own Quindles, which need not exist: under APPDATA, else XDG_DATA_HOME, else
/// HOME, else the working directory. The environment is read with each call.
QUINDLE_API std::string userQuindleDirectory();

/// The directories to scan, whether they exist or not: the user's, then "quindles" in each of the
/// application's data directories, in their order.
QUINDLE_API std::vector<std::string> quindleSearchPath();

/// Whether `file` lies directly in `directory`, links and ".." followed. Neither needs to exist. False when
/// the file system does not say.
QUINDLE_API bool isOwnQuindle(const std::string& directory, const std::string& file);

/// Looks a Quindle up by name in the directories of `searchPath`, by exactly that name or else with the case
/// of letters ignored, and hands out the file's text and its document, both of which are emptied first.
///
/// True if the file could be read, even if it does not parse or pass the checks: then `diag` gets one error
/// that says why, and `document` holds what could be read. False with an error when there is no such Quindle,
/// with the names that there are, or its file can't be read.
QUINDLE_API bool readQuindle(const std::vector<std::string>& searchPath, const std::string& name,
                             std::string& text, QuindleDocument& document, Diag& diag);

/// Parses and checks `text` and writes it, byte for byte, to the file that belongs to the name in it, making
/// `directory` if need be. Warnings do not stop it. What the file held before is replaced as a whole:
/// whatever fails or ends the process, the file holds the old text or the new. A symbolic link stays one, and
/// the file that it leads to is replaced; permissions stay.
///
/// False with errors in `diag` if the text is not sound or can't be written. `document` receives what was
/// parsed in either case; its `sourceFile` is the written path only when this returned true.
QUINDLE_API bool saveQuindle(const std::string& directory, const std::string& text, QuindleDocument& document,
                             Diag& diag);

/// Removes the file of the Quindle of that name, looked up as by `readQuindle`, if it lies in `directory`,
/// which is the user's. `file` receives the path that the name led to, empty if there is none; `revealed`
/// whether the name is found again afterwards: an installed Quindle has come back.
///
/// False with an error, and nothing removed, when there is no such Quindle, it is not the user's, or the file
/// system refuses. If memory runs out behind the removal, true with an error, and `revealed` is false.
QUINDLE_API bool deleteQuindle(const std::string& directory, const std::vector<std::string>& searchPath,
                               const std::string& name, std::string& file, bool& revealed, Diag& diag);

/// Changes the text of a Quindle so that its "enabled" setting says `enabled`: the first line that begins
/// with that word, or a new line behind the settings. Works on lines and knows nothing of the language, so
/// that comments and layout stay; a caller that must be sure parses the result. False, with `text` as it was,
/// when the text has no block at all.
QUINDLE_API bool setQuindleEnabled(std::string& text, bool enabled);

} // namespace Zamt
