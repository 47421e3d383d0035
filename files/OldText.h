#pragma once

#include "files/system.h"

#include <cstddef>
#include <filesystem>
#include <span>
#include <string>

namespace Zamt {

/// What a file held before it is written over, in memory and in a file that the disk has, for the time until
/// it has the new bytes.
class OldText {
public:
  OldText() = default;
  OldText(const OldText&) = delete;
  OldText& operator=(const OldText&) = delete;

  /// Removes the copy.
  ~OldText();

  /// Copies the file at `path` beside it or, if nothing may be made there, to the directory for temporary
  /// files, under a name that begins with ".quindle-" and ends in ".old". False when that can't be.
  bool keep(const std::filesystem::path& path);

  /// Leaves the copy where it is: the file could not be put right.
  void leave() { copyPath_.clear(); }

  std::span<const std::byte> bytes() const { return std::as_bytes(std::span(text_)); }

private:
  bool writeCopy(const std::filesystem::path& directory, const std::string& key);

  std::string text_;
  std::filesystem::path copyPath_; ///< Empty if there is none to remove.
  System::File copy_;              ///< Held for as long as the file is between old and new.
};

} // namespace Zamt
