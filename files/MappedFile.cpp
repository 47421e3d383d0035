#include "files/MappedFile.h"

#include <cerrno>
#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>

namespace Zamt {

namespace {

std::string whyNotOpened(const std::string& path, int code) {
  if (code == ENOENT || code == ENOTDIR)
    return "The file \"" + path + "\" does not exist. Check the spelling of its path.";
  if (code == EACCES || code == EPERM)
    return "There is no permission to read \"" + path + "\". Change its permissions or copy it elsewhere.";
  return "The file \"" + path + "\" could not be opened (" + std::generic_category().message(code) +
         "). Put it right and try again.";
}

} // namespace

std::unique_ptr<MappedFile> MappedFile::open(const std::string& path, std::string& error) {
  // Without O_NONBLOCK a pipe nobody writes to would hang here.
  const int descriptor = ::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
  if (descriptor < 0) {
    error = whyNotOpened(path, errno);
    return nullptr;
  }
  std::unique_ptr<MappedFile> result(new MappedFile(descriptor));
  struct stat status {};
  if (::fstat(descriptor, &status) != 0) {
    error = whyNotOpened(path, errno);
    return nullptr;
  }
  if (S_ISDIR(status.st_mode)) {
    error = "\"" + path + "\" is a directory. Name a file in it instead.";
    return nullptr;
  }
  if (!S_ISREG(status.st_mode)) {
    error = "\"" + path + "\" is not a regular file. Save its content to a file first.";
    return nullptr;
  }
  const auto size = static_cast<std::size_t>(status.st_size);
  if (size == 0) return result;
  void* const start = ::mmap(nullptr, size, PROT_READ, MAP_PRIVATE, descriptor, 0);
  if (start == MAP_FAILED) { // NOLINT(performance-no-int-to-ptr): the system's macro.
    error = whyNotOpened(path, errno);
    return nullptr;
  }
  result->content_ = {static_cast<const std::byte*>(start), size};
  return result;
}

MappedFile::~MappedFile() {
  if (!content_.empty()) ::munmap(const_cast<std::byte*>(content_.data()), content_.size());
  ::close(file_);
}

} // namespace Zamt
