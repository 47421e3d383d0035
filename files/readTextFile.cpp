#include "files/readTextFile.h"

#include "files/system.h"

#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace Zamt {

namespace {

/// Reads up to `size` bytes, fewer if the file has been cut meanwhile.
bool readBytes(int file, std::size_t size, std::string& text) {
  text.resize(size);
  std::size_t filled = 0;
  while (filled < size) {
    const ssize_t got = ::read(file, text.data() + filled, size - filled);
    if (got < 0 && errno == EINTR) continue;
    if (got < 0) return false;
    if (got == 0) break;
    filled += static_cast<std::size_t>(got);
  }
  text.resize(filled);
  return true;
}

} // namespace

bool readTextFile(const std::string& path, std::uint64_t maxBytes, std::string& text) {
  text.clear();
  // Without O_NONBLOCK, opening a pipe would wait.
  const System::File file(::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
  if (!file.isOpen()) return false;
  struct stat status {};
  const bool good = ::fstat(file.handle(), &status) == 0 && S_ISREG(status.st_mode) &&
                    static_cast<std::uint64_t>(status.st_size) <= maxBytes &&
                    readBytes(file.handle(), static_cast<std::size_t>(status.st_size), text);
  if (!good) text.clear();
  return good;
}

} // namespace Zamt
