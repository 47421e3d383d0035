#include "files/OldText.h"

#include "files/readTextFile.h"
#include "files/temporaryName.h"

#include <limits>
#include <system_error>
#include <utility>

namespace Zamt {

namespace {

/// Names are tried until one is free; in a directory for everybody somebody may sit on some.
constexpr unsigned nameAttempts = 16;

} // namespace

bool OldText::writeCopy(const std::filesystem::path& directory, const std::string& key) {
  for (unsigned attempt = 0; attempt < nameAttempts; ++attempt) {
    std::filesystem::path copy = directory / temporaryName(key, attempt, ".old");
    const std::error_code failed = System::createHeld(copy, copy_);
    if (failed == std::errc::file_exists) continue;
    if (failed) return false;
    if (!System::append(copy_, bytes()) && !System::flush(copy_)) {
      copyPath_ = std::move(copy); // so that it is noted whatever memory there is
      return true;
    }
    System::remove(copy.c_str());
    return false;
  }
  return false;
}

bool OldText::keep(const std::filesystem::path& path) {
  if (!readTextFile(path.string(), std::numeric_limits<std::uint64_t>::max(), text_)) return false;
  std::error_code failed;
  const std::string key = std::filesystem::absolute(path, failed).string();
  if (failed) return false;
  if (writeCopy(path.parent_path(), key)) return true;
  const std::filesystem::path elsewhere = std::filesystem::temp_directory_path(failed);
  return !failed && writeCopy(elsewhere, key);
}

OldText::~OldText() {
  if (!copyPath_.empty()) System::remove(copyPath_.c_str());
}

} // namespace Zamt
