#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string>

namespace Zamt {

/// A file that appears under its name only when it is complete. It is written under a temporary name in the
/// same directory; `commit` renames it. Whatever ends before that leaves the old file, whole, and no
/// temporary. Different parts may be written by different threads.
class AtomicFile {
public:
  /// Starts a file that is to be `target`; a symbolic link is followed, so that it stays one. A file of that
  /// name keeps its permissions. Null when that can't be, with a sentence in `error`.
  static std::unique_ptr<AtomicFile> create(const std::string& target, std::string& error);

  /// Removes the temporary unless `commit` has succeeded.
  ~AtomicFile();
  AtomicFile(const AtomicFile&) = delete;
  AtomicFile& operator=(const AtomicFile&) = delete;

  /// Makes room for `size` bytes, so that a full disk shows before the work. False with a sentence in
  /// `error`.
  bool reserve(std::uint64_t size, std::string& error);

  /// Writes bytes at a place of the file. False, with a sentence in `error`, when the disk is full or the
  /// user interrupted.
  bool write(std::uint64_t offset, std::span<const std::byte> bytes, std::string& error);

  /// Flushes the file to the disk and gives it its name. False with a sentence in `error`.
  bool commit(std::string& error);

private:
  AtomicFile() = default;
  bool openTemporary(const std::string& directory, std::string& error);
  bool keepPermissions(std::string& error);

  std::string name;      ///< As the caller gave it, for sentences.
  std::string target;    ///< With symbolic links resolved.
  std::string temporary; ///< Empty once there is none.
  int file = -1;
  int slot = -1; ///< Where the temporary is noted for `removeTemporaries`.
};

/// Removes the temporaries of all files not committed yet. For a signal handler that ends the process: calls
/// nothing that is not safe there.
void removeTemporaries() noexcept;

} // namespace Zamt
