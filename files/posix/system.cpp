#include "files/system.h"

#include <array>
#include <cerrno>
#include <charconv>
#include <cstring>
#include <dirent.h>
#include <fcntl.h>
#include <memory>
#include <new>
#include <string_view>
#include <sys/file.h>
#if defined(__linux__)
#include <linux/fs.h>
#include <sys/ioctl.h>
#endif
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

namespace Zamt::System {

namespace {

/// As many as the system follows itself.
constexpr int maxLinks = 40;

constexpr mode_t allPermissions = 07777;
constexpr mode_t newFile = 0666;
constexpr mode_t usualMask = 022;

/// A used-up quota is a full disk to whoever is told.
std::error_code lastError() { return {errno == EDQUOT ? ENOSPC : errno, std::generic_category()}; }

/// Whether a file may not become that large. Asked beforehand, because trying ends the process by a signal.
bool isBeyondLimit(std::uint64_t size) {
  struct rlimit limit {};
  return ::getrlimit(RLIMIT_FSIZE, &limit) == 0 && limit.rlim_cur != RLIM_INFINITY && size > limit.rlim_cur;
}

/// The process's mask for new files. Asked of the kernel, since `umask` can only tell it by changing it,
/// under the eyes of other threads.
mode_t maskForNewFiles() {
  const File status(::open("/proc/self/status", O_RDONLY | O_CLOEXEC));
  std::array<char, 4096> text{};
  const ssize_t got = status.isOpen() ? ::read(status.handle(), text.data(), text.size()) : -1;
  if (got <= 0) return usualMask;
  constexpr std::string_view label = "\nUmask:\t";
  const std::string_view lines(text.data(), static_cast<std::size_t>(got));
  const std::size_t at = lines.find(label);
  unsigned mask = usualMask;
  if (at != std::string_view::npos)
    std::from_chars(lines.data() + at + label.size(), lines.data() + lines.size(), mask, 8);
  return static_cast<mode_t>(mask);
}

bool lock(const File& file) { return ::flock(file.handle(), LOCK_EX | LOCK_NB) == 0; }

/// Removes what stands at `path` if no process holds it.
bool removeIfLeftBehind(const std::filesystem::path& path) {
  const File left(::open(path.c_str(), O_RDWR | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK));
  return left.isOpen() && lock(left) && standsUnder(left, path) && ::unlink(path.c_str()) == 0;
}

/// Whether `path` is one of the links by which a process reaches its open files, such as the one to standard
/// output. Where that is a file, it is open for whatever else is printed; where it is a pipe, it has no name.
bool isStream(const std::filesystem::path& path) {
  std::error_code failed;
  const std::string directory = std::filesystem::canonical(path.parent_path(), failed).string();
  return directory.starts_with("/proc/") && directory.ends_with("/fd") &&
         !std::filesystem::is_character_file(path, failed);
}

} // namespace

File& File::operator=(File&& other) noexcept {
  if (this != &other) {
    close();
    handle_ = other.handle_;
    other.handle_ = -1;
  }
  return *this;
}

std::error_code File::close() {
  const bool good = handle_ < 0 || ::close(handle_) == 0;
  handle_ = -1;
  return good ? std::error_code() : lastError();
}

std::optional<std::filesystem::path> followLinks(std::filesystem::path path) {
  for (int links = 0; links < maxLinks; ++links) {
    std::error_code failed;
    if (!std::filesystem::is_symlink(path, failed) || isStream(path)) return path;
    const std::filesystem::path target = std::filesystem::read_symlink(path, failed);
    if (failed) return std::nullopt;
    path = path.parent_path() / target;
  }
  return std::nullopt;
}

std::error_code lookForWriting(const std::filesystem::path& path, Occupant& occupant) {
  occupant = {};
  struct stat status {};
  if (::stat(path.c_str(), &status) != 0) return errno == ENOENT ? std::error_code() : lastError();
  occupant.kind = S_ISREG(status.st_mode)   ? Occupant::Kind::File
                  : S_ISDIR(status.st_mode) ? Occupant::Kind::Directory
                  : S_ISCHR(status.st_mode) ? Occupant::Kind::Device
                                            : Occupant::Kind::Other;
  std::error_code failed;
  if (std::filesystem::is_symlink(path, failed)) occupant.kind = Occupant::Kind::Other; // a stream's
  if (occupant.kind != Occupant::Kind::File) return {};
  occupant.shared = status.st_nlink > 1;
  occupant.permissions = status.st_mode & allPermissions;
  occupant.owner = status.st_uid;
  occupant.group = status.st_gid;
  // Asked by opening, since the system alone knows all that may forbid it.
  File file;
  return openForWriting(path, file);
}

bool mayReplace(const std::filesystem::path& path, const Occupant& occupant) {
  const std::filesystem::path directory = path.has_parent_path() ? path.parent_path() : ".";
  struct stat status {};
  if (::stat(directory.c_str(), &status) != 0) return false;
  if (::faccessat(AT_FDCWD, directory.c_str(), W_OK | X_OK, AT_EACCESS) != 0) return false;
  const bool sticky = (status.st_mode & S_ISVTX) != 0 && occupant.kind == Occupant::Kind::File;
  const uid_t user = ::geteuid();
  return !sticky || user == 0 || user == status.st_uid || user == occupant.owner;
}

std::error_code openForWriting(const std::filesystem::path& path, File& file) {
  file = File(::open(path.c_str(), O_WRONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY | O_NOFOLLOW));
  return file.isOpen() ? std::error_code() : lastError();
}

bool hold(const File& file) { return lock(file) || errno != EWOULDBLOCK; }

bool standsUnder(const File& file, const std::filesystem::path& path) {
  struct stat opened {};
  struct stat named {};
  return ::fstat(file.handle(), &opened) == 0 && ::lstat(path.c_str(), &named) == 0 &&
         opened.st_dev == named.st_dev && opened.st_ino == named.st_ino;
}

std::error_code createHeld(const std::filesystem::path& path, File& file) {
  constexpr int flags = O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC | O_NOFOLLOW;
  constexpr mode_t narrow = S_IRUSR | S_IWUSR;
  file = File(::open(path.c_str(), flags, narrow));
  if (!file.isOpen() && errno == EEXIST && removeIfLeftBehind(path))
    file = File(::open(path.c_str(), flags, narrow));
  if (!file.isOpen()) return lastError();
  // Between making and holding it, it looks like one that was left behind.
  if (hold(file) && standsUnder(file, path)) return {};
  file.close();
  return std::make_error_code(std::errc::file_exists);
}

std::error_code givePermissions(const File& file, const Occupant& replaced) {
  if (replaced.kind != Occupant::Kind::File)
    return ::fchmod(file.handle(), newFile & ~maskForNewFiles()) == 0 ? std::error_code() : lastError();
  // Only the superuser may give files away, so that failing to is usual.
  if (::fchown(file.handle(), replaced.owner, replaced.group) != 0) errno = 0;
  return ::fchmod(file.handle(), replaced.permissions) == 0 ? std::error_code() : lastError();
}

std::error_code reserve(const File& file, std::uint64_t size) {
  if (isBeyondLimit(size)) return std::make_error_code(std::errc::file_too_large);
  if (::fallocate(file.handle(), 0, 0, static_cast<off_t>(size)) == 0) return {};
  // File systems that can't reserve say so when they are full.
  const std::error_code code = lastError();
  return code == std::errc::no_space_on_device || code == std::errc::file_too_large ? code
                                                                                    : std::error_code();
}

std::error_code shareBlocks([[maybe_unused]] const File& file, [[maybe_unused]] int from,
                            [[maybe_unused]] std::uint64_t size) {
#if defined(FICLONE)
  if (isBeyondLimit(size)) return std::make_error_code(std::errc::file_too_large);
  if (::ioctl(file.handle(), FICLONE, from) != 0) return lastError();
  const std::error_code code = cut(file, size);
  if (code) cut(file, 0);
  return code;
#else
  return std::make_error_code(std::errc::not_supported);
#endif
}

std::error_code copyAt([[maybe_unused]] const File& file, [[maybe_unused]] std::uint64_t offset,
                       [[maybe_unused]] int from, [[maybe_unused]] std::uint64_t fromOffset,
                       [[maybe_unused]] std::size_t size, std::size_t& copied) {
  copied = 0;
#if defined(__linux__)
  if (isBeyondLimit(offset + size)) return std::make_error_code(std::errc::file_too_large);
  auto source = static_cast<off_t>(fromOffset);
  auto target = static_cast<off_t>(offset);
  ssize_t taken = -1;
  do {
    taken = ::copy_file_range(from, &source, file.handle(), &target, size, 0);
  } while (taken < 0 && errno == EINTR);
  if (taken < 0) return lastError();
  // Some file systems copy nothing instead of saying that they can't.
  if (taken == 0 && size != 0) return std::make_error_code(std::errc::not_supported);
  copied = static_cast<std::size_t>(taken);
  return {};
#else
  return std::make_error_code(std::errc::not_supported);
#endif
}

std::error_code writeAt(const File& file, std::uint64_t offset, std::span<const std::byte> bytes,
                        std::size_t& written) {
  written = 0;
  if (isBeyondLimit(offset + bytes.size())) return std::make_error_code(std::errc::file_too_large);
  ssize_t taken = -1;
  do {
    taken = ::pwrite(file.handle(), bytes.data(), bytes.size(), static_cast<off_t>(offset));
  } while (taken < 0 && errno == EINTR);
  if (taken < 0) return lastError();
  if (taken == 0 && !bytes.empty()) return std::make_error_code(std::errc::no_space_on_device);
  written = static_cast<std::size_t>(taken);
  return {};
}

std::error_code append(const File& file, std::span<const std::byte> bytes) {
  while (!bytes.empty()) {
    const ssize_t taken = ::write(file.handle(), bytes.data(), bytes.size());
    if (taken < 0 && errno == EINTR) continue;
    if (taken < 0) return lastError();
    if (taken == 0) return std::make_error_code(std::errc::no_space_on_device);
    bytes = bytes.subspan(static_cast<std::size_t>(taken));
  }
  return {};
}

std::error_code cut(const File& file, std::uint64_t size) {
  return ::ftruncate(file.handle(), static_cast<off_t>(size)) == 0 ? std::error_code() : lastError();
}

void startFlush([[maybe_unused]] const File& file, [[maybe_unused]] std::uint64_t offset,
                [[maybe_unused]] std::uint64_t size) {
#if defined(SYNC_FILE_RANGE_WRITE)
  ::sync_file_range(file.handle(), static_cast<off_t>(offset), static_cast<off_t>(size),
                    SYNC_FILE_RANGE_WRITE);
#endif
}

std::error_code flush(const File& file) {
  return ::fdatasync(file.handle()) == 0 ? std::error_code() : lastError();
}

std::error_code rename(const std::filesystem::path& from, const std::filesystem::path& to) {
  return ::rename(from.c_str(), to.c_str()) == 0 ? std::error_code() : lastError();
}

void flushDirectory(const std::filesystem::path& directory) {
  const File folder(::open(directory.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  if (folder.isOpen()) ::fsync(folder.handle());
}

std::vector<std::string> namesIn(const std::filesystem::path& directory) {
  std::vector<std::string> names;
  const auto close = [](DIR* opened) { ::closedir(opened); };
  const std::unique_ptr<DIR, decltype(close)> opened(::opendir(directory.c_str()), close);
  if (!opened && errno == ENOMEM) throw std::bad_alloc();
  while (const dirent* const entry = opened ? ::readdir(opened.get()) : nullptr) {
    const std::string_view name = entry->d_name;
    if (name != "." && name != "..") names.emplace_back(name);
  }
  return names;
}

void remove(const char* path) noexcept { ::unlink(path); }

} // namespace Zamt::System
