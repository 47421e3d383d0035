#include "files/AtomicFile.h"

#include "files/MappedFile.h"
#include "files/Stop.h"
#include "files/temporaryName.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <climits>
#include <cstring>
#include <system_error>

namespace Zamt {

namespace {

/// Bytes written between two looks at whether the user wants to stop: some milliseconds of work.
constexpr std::size_t pieceSize = std::size_t{8} << 20;

/// Smaller pieces are left to gather before the disk sees them.
constexpr std::size_t worthStarting = std::size_t{512} << 10;

/// How many processes may write a file of one name at a time; the last to finish wins.
constexpr unsigned writersAtOnce = 64;

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

void forgetTemporary(int& slot) {
  if (slot < 0) return;
  slots[static_cast<std::size_t>(slot)].holdsPath = false;
  slots[static_cast<std::size_t>(slot)].taken = false;
  slot = -1;
}

std::string whyNotCreated(const std::string& directory, std::error_code code) {
  if (code == std::errc::no_such_file_or_directory || code == std::errc::not_a_directory)
    return "The directory \"" + directory + "\" does not exist. Create it first or write elsewhere.";
  if (code == std::errc::permission_denied || code == std::errc::operation_not_permitted ||
      code == std::errc::read_only_file_system)
    return "There is no permission to write in the directory \"" + directory +
           "\". Change its permissions or write elsewhere.";
  return "No file could be created in the directory \"" + directory + "\" (" + code.message() +
         "). Put it right or write elsewhere.";
}

std::string whyNotWritten(const std::string& name, std::error_code code) {
  if (code == std::errc::no_space_on_device)
    return "There is not enough room on the disk for \"" + name + "\". Make room or write elsewhere.";
  if (code == std::errc::file_too_large)
    return "\"" + name + "\" would be larger than files may be here. Raise the limit or write elsewhere.";
  return "\"" + name + "\" could not be written (" + code.message() + "). Put it right or write elsewhere.";
}

/// What forbids to replace what stands at the target; empty if nothing does.
std::string whyNotReplaced(const std::string& name, const std::string& directory,
                           const System::Occupant& occupant, std::error_code code) {
  using Kind = System::Occupant::Kind;
  if (occupant.kind == Kind::Directory) return "\"" + name + "\" is a directory. Name a file in it instead.";
  if (occupant.kind == Kind::Other || occupant.kind == Kind::Device)
    return "\"" + name + "\" is not a regular file. Write to another name.";
  if (occupant.kind == Kind::File && code)
    return "\"" + name + "\" is write-protected. Change its permissions or write elsewhere.";
  return code ? whyNotCreated(directory, code) : std::string();
}

} // namespace

bool AtomicFile::openTemporary(std::string& error) {
  std::error_code code;
  for (unsigned attempt = 0; attempt < writersAtOnce; ++attempt) {
    temporary_ = directory_ / temporaryName(target_.filename().string(), attempt, ".tmp");
    code = System::createHeld(temporary_, file_);
    if (!code) {
      slot_ = noteTemporary(temporary_.string());
      return true;
    }
    if (code != std::errc::file_exists) break;
  }
  temporary_.clear();
  error = whyNotCreated(directory_.string(), code);
  return false;
}

bool AtomicFile::aimAt(const std::string& target, std::string& error) {
  name_ = target;
  const std::optional<std::filesystem::path> path = System::followLinks(target);
  if (!path) {
    error = "\"" + target + "\" is a link that leads in a circle. Remove it or write elsewhere.";
    return false;
  }
  target_ = *path;
  directory_ = path->has_parent_path() ? path->parent_path() : ".";
  const std::error_code code = System::lookForWriting(*path, replaced_);
  error = whyNotReplaced(target, directory_.string(), replaced_, code);
  if (!error.empty() || replaced_.kind != System::Occupant::Kind::File) return error.empty();
  if (replaced_.shared)
    error =
        "\"" + target +
        "\" has several names (hard links), and a new file would take only this one. Write to another file "
        "with -o.";
  else if (!System::mayReplace(*path, replaced_))
    error = "The directory \"" + directory_.string() + "\" lets no other file take the place of \"" + target +
            "\". Write to another directory with -o.";
  return error.empty();
}

bool AtomicFile::mayCreate(const std::string& target, std::string& error) {
  return AtomicFile().aimAt(target, error);
}

std::unique_ptr<AtomicFile> AtomicFile::create(const std::string& target, std::string& error,
                                               const Stop* stop) {
  std::unique_ptr<AtomicFile> result(new AtomicFile);
  result->stop_ = stop;
  if (!result->aimAt(target, error) || !result->openTemporary(error)) return nullptr;
  return result;
}

AtomicFile::~AtomicFile() {
  if (!temporary_.empty()) System::remove(temporary_.c_str());
  forgetTemporary(slot_);
}

bool AtomicFile::stopped(std::string& error) const {
  if (stop_ == nullptr || !stop_->requested()) return false;
  error = stoppedMessage;
  return true;
}

bool AtomicFile::reserve(std::uint64_t size, std::string& error) {
  const std::error_code code = size == 0 ? std::error_code() : System::reserve(file_, size);
  if (code) error = whyNotWritten(name_, code);
  return !code;
}

bool AtomicFile::shareBlocks(const MappedFile& input) {
  return !System::shareBlocks(file_, input.descriptor(), input.bytes().size());
}

bool AtomicFile::copy(std::uint64_t offset, const MappedFile& input, std::uint64_t from, std::size_t size,
                      std::string& error) {
  while (size > 0) {
    if (stopped(error)) return false;
    std::size_t copied = 0;
    if (System::copyAt(file_, offset, input.descriptor(), from, std::min(size, pieceSize), copied))
      return write(offset, input.bytes().subspan(from, size), error);
    if (copied >= worthStarting) System::startFlush(file_, offset, copied);
    offset += copied;
    from += copied;
    size -= copied;
  }
  return true;
}

bool AtomicFile::write(std::uint64_t offset, std::span<const std::byte> bytes, std::string& error) {
  while (!bytes.empty()) {
    if (stopped(error)) return false;
    std::size_t written = 0;
    const std::error_code code =
        System::writeAt(file_, offset, bytes.first(std::min(bytes.size(), pieceSize)), written);
    if (code) {
      error = whyNotWritten(name_, code);
      return false;
    }
    if (written >= worthStarting) System::startFlush(file_, offset, written);
    offset += written;
    bytes = bytes.subspan(written);
  }
  return true;
}

bool AtomicFile::commit(std::string& error) {
  std::error_code code = System::givePermissions(file_, replaced_);
  if (!code) code = System::flush(file_);
  if (!code && stopped(error)) return false;
  if (!code) code = System::rename(temporary_, target_);
  if (code) {
    error = whyNotWritten(name_, code);
    return false;
  }
  temporary_.clear();
  forgetTemporary(slot_);
  // The file stands whole under its name either way; this only makes the name itself survive a power cut.
  System::flushDirectory(directory_);
  return true;
}

void removeTemporaries() noexcept {
  for (Slot& slot : slots)
    if (slot.holdsPath.exchange(false)) System::remove(slot.path.data());
}

} // namespace Zamt
