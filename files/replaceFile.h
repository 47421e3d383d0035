#pragma once

#include <string>

namespace Zamt {

enum class Replaced {
  Done,
  NotBegun,   ///< The file may not be written.
  NotFinished ///< The disk is full, or failed.
};

/// Gives the file at `path` these bytes, in place of what was there, as `AtomicFile` does.
///
/// Where no other file may take its place (its directory takes no new one or keeps what is another user's, it
/// has several names, or it is a device) the bytes are written over the old ones. Those of a file are kept in
/// a copy beside it, or in the directory for temporary files, until the disk holds the new ones; a process
/// that is killed in between leaves the copy. What is a directory, a pipe or a socket is not touched.
Replaced replaceFile(const std::string& path, const std::string& bytes);

} // namespace Zamt
