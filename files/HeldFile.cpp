#include "files/HeldFile.h"

namespace Zamt {

namespace {

/// So many others in a row may have put another file in the place of the one that was opened.
constexpr unsigned attempts = 64;

} // namespace

bool HeldFile::hold(const std::string& path, std::string& error) {
  const std::optional<std::filesystem::path> target = System::followLinks(path);
  for (unsigned attempt = 0; attempt < attempts; ++attempt) {
    if (!target || System::openForWriting(*target, file_)) return true;
    if (!System::hold(file_)) break;
    if (System::standsUnder(file_, *target)) return true;
  }
  file_.close();
  error = "\"" + path + "\" is being changed by another program. Try again when that has ended.";
  return false;
}

} // namespace Zamt
