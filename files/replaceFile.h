#pragma once

#include <string>

namespace Zamt {

enum class Replaced {
  Done,
  NotBegun,   ///< The file may not be written, or its directory takes no new one.
  NotFinished ///< The disk is full, or failed.
};

/// Gives the file at `path` these bytes, in place of what was there, as `AtomicFile` does. What is neither a
/// regular file nor absent is not touched.
Replaced replaceFile(const std::string& path, const std::string& bytes);

} // namespace Zamt
