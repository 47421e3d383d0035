#include "files/OldText.h"

#include "files/readTextFile.h"
#include "files/temporaryName.h"

#include <limits>
#include <system_error>

namespace Zamt {

namespace {

/// Names are tried until one is free; in a directory for everybody somebody may sit on some.
constexpr unsigned nameAttempts = 16;

} // namespace

bool OldText::writeCopy(const std::filesystem::path& directory, const std::string& key) {
  for (unsigned attempt = 0; attempt < nameAttempts; ++attempt) {
    const std::filesystem::path copy = directory / temporaryName(key, attempt, ".old");
    const std::error_code failed = System::createHeld(copy, copy_);
    if (failed == std::errc::file_exists) continue;
    if (failed) return false;
    if (!System::append(copy_, bytes()) && !System::flush(copy_)) {
      copyPath_ = copy;
      return true;
    }
    System::remove(copy.c_str());
    return false;
  }
  return false;
}

bool OldText::keep(const std::filesystem::path& path) {
  if (!readTextFile(path.string(), std::numeric_limits<std::uint64_t>::max(), text_)) return false;
  const std::string key = std::filesystem::absolute(path).string();
  if (writeCopy(path.parent_path(), key)) return true;
  std::error_code failed;
  const std::filesystem::path elsewhere = std::filesystem::temp_directory_path(failed);
  return !failed && writeCopy(elsewhere, key);
}

OldText::~OldText() {
  if (!copyPath_.empty()) System::remove(copyPath_.c_str());
}

} // namespace Zamt
