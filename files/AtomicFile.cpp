#include "files/AtomicFile.h"

#include "files/Interruption.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <cerrno>
#include <climits>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <random>
#include <sys/resource.h>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>

namespace Zamt {

namespace {

/// Bytes written between two looks at whether the user wants to stop: some milliseconds of work.
constexpr std::size_t pieceSize = std::size_t{8} << 20;

/// Names are tried until one is free; with 64 random bits more than a few mean that something is wrong.
constexpr int nameAttempts = 16;

/// Where a signal handler finds the temporaries. It can't follow strings that other threads may free, so the
/// paths are copied here. One is in use for each file being written; when all are, further files do without.
struct Slot {
  std::atomic<bool> taken{false};
  std::atomic<bool> holdsPath{false};
  std::array<char, PATH_MAX> path{};
};
std::array<Slot, 8> slots; // the only way to reach a signal handler

int noteTemporary(const std::string& path) {
  if (path.size() >= PATH_MAX) return -1;
  for (std::size_t i = 0; i < slots.size(); ++i) {
    if (slots[i].taken.exchange(true)) continue;
    std::memcpy(slots[i].path.data(), path.c_str(), path.size() + 1);
    slots[i].holdsPath = true;
    return static_cast<int>(i);
  }
  return -1;
}

void forgetTemporary(int slot) {
  if (slot < 0) return;
  slots[static_cast<std::size_t>(slot)].holdsPath = false;
  slots[static_cast<std::size_t>(slot)].taken = false;
}

std::string whyNotCreated(const std::string& directory, int code) {
  if (code == ENOENT || code == ENOTDIR)
    return "The directory \"" + directory + "\" does not exist. Create it first or write elsewhere.";
  if (code == EACCES || code == EPERM || code == EROFS)
    return "There is no permission to write in the directory \"" + directory +
           "\". Change its permissions or write elsewhere.";
  return "No file could be created in the directory \"" + directory + "\" (" +
         std::generic_category().message(code) + "). Put it right or write elsewhere.";
}

std::string whyNotWritten(const std::string& name, int code) {
  if (code == ENOSPC || code == EDQUOT)
    return "There is not enough room on the disk for \"" + name + "\". Make room or write elsewhere.";
  if (code == EFBIG)
    return "\"" + name + "\" would be larger than files may be here. Raise the limit or write elsewhere.";
  return "\"" + name + "\" could not be written (" + std::generic_category().message(code) +
         "). Put it right or write elsewhere.";
}

/// The file that `path` stands for once links are followed; `path` itself when it is none or leads nowhere.
std::filesystem::path followLinks(const std::filesystem::path& path) {
  std::error_code failed;
  if (!std::filesystem::is_symlink(path, failed)) return path;
  std::filesystem::path resolved = std::filesystem::canonical(path, failed);
  return failed ? path : resolved;
}

std::string randomName() {
  std::random_device source;
  std::array<char, 17> digits{};
  std::snprintf(digits.data(), digits.size(), "%08x%08x", source(), source());
  return std::string(".quindle-") + digits.data() + ".tmp";
}

} // namespace

bool AtomicFile::openTemporary(const std::string& directory, std::string& error) {
  for (int attempt = 0; attempt < nameAttempts; ++attempt) {
    temporary = (std::filesystem::path(directory) / randomName()).string();
    // Noted before it exists: a signal in between must find it.
    slot = noteTemporary(temporary);
    file = ::open(temporary.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC | O_NOFOLLOW, 0666);
    if (file >= 0) return true;
    const int code = errno;
    forgetTemporary(slot);
    slot = -1;
    temporary.clear();
    if (code == EEXIST) continue;
    error = whyNotCreated(directory, code);
    return false;
  }
  error = whyNotCreated(directory, EEXIST);
  return false;
}

bool AtomicFile::keepPermissions(std::string& error) {
  struct stat old {};
  if (::stat(target.c_str(), &old) != 0) return true;
  // Only the superuser may give files away, so that failing to is usual.
  if (::fchown(file, old.st_uid, old.st_gid) != 0) errno = 0;
  if (::fchmod(file, old.st_mode & 07777) == 0) return true;
  error = whyNotWritten(name, errno);
  return false;
}

std::unique_ptr<AtomicFile> AtomicFile::create(const std::string& target, std::string& error) {
  std::unique_ptr<AtomicFile> result(new AtomicFile);
  result->name = target;
  const std::filesystem::path path = followLinks(target);
  result->target = path.string();
  struct stat old {};
  if (::stat(result->target.c_str(), &old) == 0) {
    if (S_ISDIR(old.st_mode)) {
      error = "\"" + target + "\" is a directory. Name a file in it instead.";
      return nullptr;
    }
    if (!S_ISREG(old.st_mode)) {
      error = "\"" + target + "\" is not a regular file. Write to another name.";
      return nullptr;
    }
    if (::access(result->target.c_str(), W_OK) != 0) {
      error = "\"" + target + "\" is write-protected. Change its permissions or write elsewhere.";
      return nullptr;
    }
  }
  const std::string directory = path.has_parent_path() ? path.parent_path().string() : ".";
  if (!result->openTemporary(directory, error) || !result->keepPermissions(error)) return nullptr;
  return result;
}

AtomicFile::~AtomicFile() {
  if (file >= 0) ::close(file);
  if (!temporary.empty()) ::unlink(temporary.c_str());
  forgetTemporary(slot);
}

bool AtomicFile::reserve(std::uint64_t size, std::string& error) {
  if (size == 0) return true;
  // Asked beforehand, because writing past the limit ends the process by a signal.
  struct rlimit limit {};
  if (::getrlimit(RLIMIT_FSIZE, &limit) == 0 && limit.rlim_cur != RLIM_INFINITY && size > limit.rlim_cur) {
    error = whyNotWritten(name, EFBIG);
    return false;
  }
  if (::fallocate(file, 0, 0, static_cast<off_t>(size)) == 0) return true;
  if (errno == ENOSPC || errno == EDQUOT || errno == EFBIG) {
    error = whyNotWritten(name, errno);
    return false;
  }
  return true; // file systems that can't reserve say so when they are full
}

/// Smaller pieces are left to gather before the disk sees them.
constexpr std::size_t worthStarting = std::size_t{512} << 10;

bool AtomicFile::write(std::uint64_t offset, std::span<const std::byte> bytes, std::string& error) {
  while (!bytes.empty()) {
    if (interrupted) {
      error = interruptedMessage;
      return false;
    }
    const ssize_t written =
        ::pwrite(file, bytes.data(), std::min(bytes.size(), pieceSize), static_cast<off_t>(offset));
    if (written < 0 && errno == EINTR) continue;
    if (written <= 0) {
      error = whyNotWritten(name, written < 0 ? errno : ENOSPC);
      return false;
    }
#if defined(SYNC_FILE_RANGE_WRITE)
    // The disk starts on what is there while the rest is being worked out, so that `commit` has less to wait
    // for. A hint: what comes of it shows there.
    if (static_cast<std::size_t>(written) >= worthStarting)
      ::sync_file_range(file, static_cast<off_t>(offset), written, SYNC_FILE_RANGE_WRITE);
#endif
    offset += static_cast<std::uint64_t>(written);
    bytes = bytes.subspan(static_cast<std::size_t>(written));
  }
  return true;
}

bool AtomicFile::commit(std::string& error) {
  if (::fdatasync(file) != 0) {
    error = whyNotWritten(name, errno);
    return false;
  }
  if (interrupted) {
    error = interruptedMessage;
    return false;
  }
  if (::rename(temporary.c_str(), target.c_str()) != 0) {
    error = whyNotWritten(name, errno);
    return false;
  }
  const std::string directory = std::filesystem::path(temporary).parent_path().string();
  temporary.clear();
  forgetTemporary(slot);
  slot = -1;
  // The file stands whole under its name either way; this only makes the name itself survive a power cut.
  const int folder = ::open(directory.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  if (folder >= 0) {
    ::fsync(folder);
    ::close(folder);
  }
  return true;
}

void removeTemporaries() noexcept {
  for (Slot& slot : slots)
    if (slot.holdsPath.exchange(false)) ::unlink(slot.path.data());
}

} // namespace Zamt
