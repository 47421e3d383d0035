#include "files/replaceFile.h"

#include <array>
#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <fcntl.h>
#include <filesystem>
#include <optional>
#include <random>
#include <string_view>
#include <sys/resource.h>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>

namespace Zamt {

namespace {

/// As many as the system follows itself.
constexpr int maxLinks = 40;

/// Names are tried until one is free; with 64 random bits, more than a few mean that something is wrong.
constexpr int nameAttempts = 16;

/// An open file, closed at the end of its scope.
class OpenFile {
public:
  explicit OpenFile(int handle = -1) : handle_(handle) {}
  OpenFile(OpenFile&& other) noexcept : handle_(other.handle_) { other.handle_ = -1; }
  OpenFile(const OpenFile&) = delete;
  OpenFile& operator=(const OpenFile&) = delete;
  ~OpenFile() { close(); }

  bool isOpen() const { return handle_ >= 0; }
  int handle() const { return handle_; }

  /// False when the file system reports only now that it could not keep what was written.
  bool close() {
    const bool good = handle_ < 0 || ::close(handle_) == 0;
    handle_ = -1;
    return good;
  }

private:
  int handle_;
};

/// What `path` stands for once links are followed, the last of which may lead to nothing.
std::optional<std::filesystem::path> followLinks(std::filesystem::path path) {
  for (int links = 0; links < maxLinks; ++links) {
    std::error_code failed;
    if (!std::filesystem::is_symlink(path, failed)) return path;
    const std::filesystem::path target = std::filesystem::read_symlink(path, failed);
    if (failed) return std::nullopt;
    path = path.parent_path() / target;
  }
  return std::nullopt;
}

/// Whether a file at `path` may be given other bytes, and its status if there is one.
bool mayWrite(const std::filesystem::path& path, std::optional<struct stat>& old) {
  // Asked by opening, since the system alone knows all that may forbid it; without truncating, and without
  // waiting if it is a pipe.
  const OpenFile file(::open(path.c_str(), O_WRONLY | O_CLOEXEC | O_NONBLOCK));
  if (!file.isOpen()) return errno == ENOENT;
  struct stat status {};
  if (::fstat(file.handle(), &status) != 0 || !S_ISREG(status.st_mode)) return false;
  old = status;
  return true;
}

std::string randomName() {
  std::random_device source;
  std::array<char, 17> digits{};
  std::snprintf(digits.data(), digits.size(), "%08x%08x", source(), source());
  return std::string(".quindle-") + digits.data() + ".tmp";
}

OpenFile makeTemporary(const std::filesystem::path& directory, std::filesystem::path& temporary) {
  for (int attempt = 0; attempt < nameAttempts; ++attempt) {
    temporary = directory / randomName();
    OpenFile file(::open(temporary.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC | O_NOFOLLOW, 0666));
    if (file.isOpen() || errno != EEXIST) return file;
  }
  return OpenFile();
}

bool writeAll(int file, std::string_view bytes) {
  // Asked beforehand, because writing past the limit would end the host by a signal.
  struct rlimit limit {};
  if (::getrlimit(RLIMIT_FSIZE, &limit) == 0 && limit.rlim_cur != RLIM_INFINITY &&
      bytes.size() > limit.rlim_cur)
    return false;
  while (!bytes.empty()) {
    const ssize_t written = ::write(file, bytes.data(), bytes.size());
    if (written < 0 && errno == EINTR) continue;
    if (written <= 0) return false;
    bytes.remove_prefix(static_cast<std::size_t>(written));
  }
  return true;
}

bool keepPermissions(int file, const struct stat& old) {
  // Only the superuser may give files away, so that failing to is usual.
  if (::fchown(file, old.st_uid, old.st_gid) != 0) errno = 0;
  return ::fchmod(file, old.st_mode & 07777) == 0;
}

/// Makes the new name survive a power cut. The file stands whole under it either way.
void flushDirectory(const std::filesystem::path& directory) {
  const OpenFile folder(::open(directory.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  if (folder.isOpen()) ::fsync(folder.handle());
}

} // namespace

Replaced replaceFile(const std::string& path, const std::string& bytes) {
  const std::optional<std::filesystem::path> target = followLinks(path);
  std::optional<struct stat> old;
  if (!target || !mayWrite(*target, old)) return Replaced::NotBegun;
  const std::filesystem::path directory = target->has_parent_path() ? target->parent_path() : ".";
  std::filesystem::path temporary;
  OpenFile file = makeTemporary(directory, temporary);
  if (!file.isOpen()) return Replaced::NotBegun;
  const bool whole = (!old || keepPermissions(file.handle(), *old)) && writeAll(file.handle(), bytes) &&
                     ::fsync(file.handle()) == 0 && file.close() &&
                     ::rename(temporary.c_str(), target->c_str()) == 0;
  if (!whole) {
    ::unlink(temporary.c_str());
    return Replaced::NotFinished;
  }
  flushDirectory(directory);
  return Replaced::Done;
}

} // namespace Zamt
