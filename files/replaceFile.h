#pragma once

#include <string>

namespace Zamt {

enum class Replaced {
  Done,
  NotBegun,   ///< The file may not be written, or its directory takes no new one.
  NotFinished ///< The disk is full, or failed.
};

/// Gives the file at `path` these bytes. They are written under another name beside it, flushed and renamed,
/// so that whatever fails or ends the process, the file holds its old bytes or all of the new ones. A
/// symbolic link stays one, and the file it leads to is replaced, or made if the link dangles; permissions
/// stay. What is neither a regular file nor absent is not touched.
///
/// A process that is killed in between may leave the other name behind: it begins with a dot and ends in
/// ".tmp".
Replaced replaceFile(const std::string& path, const std::string& bytes);

} // namespace Zamt
