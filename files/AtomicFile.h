#pragma once

#include "files/system.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string>

namespace Zamt {

class MappedFile;
class Stop;

/// A file that appears under its name only when it is complete. It is written under a temporary name in the
/// same directory, which begins with a dot and ends in ".tmp"; `commit` renames it. Whatever ends before that
/// leaves the old file, whole, and no temporary; a process that is killed leaves one, and the next file of
/// that name takes it away. Different parts may be written by different threads.
class AtomicFile {
public:
  /// Starts a file that is to be `target`. A symbolic link stays one, and the file that it leads to is
  /// replaced, or made if there is none. A file that is replaced keeps its permissions; one that has other
  /// names too is not replaced. `stop`, if given, outlives the file and ends its writing early. Null when
  /// that can't be, with a sentence in `error`.
  static std::unique_ptr<AtomicFile> create(const std::string& target, std::string& error,
                                            const Stop* stop = nullptr);

  /// Whether `create` could start a file there now, as far as can be told without making one. False with a
  /// sentence in `error`.
  static bool mayCreate(const std::string& target, std::string& error);

  /// Removes the temporary unless `commit` has succeeded.
  ~AtomicFile();
  AtomicFile(const AtomicFile&) = delete;
  AtomicFile& operator=(const AtomicFile&) = delete;

  /// Makes room for `size` bytes, so that a full disk shows before the work. False with a sentence in
  /// `error`.
  bool reserve(std::uint64_t size, std::string& error);

  /// Starts with the bytes of another file, whose blocks it shares until they are written over. False where
  /// that can't be; nothing has happened then. To be asked before anything else is done with the file.
  bool shareBlocks(const MappedFile& input);

  /// Writes the bytes of another file from a place of it on, as `write` does, but has the system copy them
  /// where it can.
  bool copy(std::uint64_t offset, const MappedFile& input, std::uint64_t from, std::size_t size,
            std::string& error);

  /// Writes bytes at a place of the file. False, with a sentence in `error`, when the disk is full or the
  /// work was stopped.
  bool write(std::uint64_t offset, std::span<const std::byte> bytes, std::string& error);

  /// Flushes the file to the disk and gives it its name. False with a sentence in `error`.
  bool commit(std::string& error);

private:
  AtomicFile() = default;
  bool aimAt(const std::string& target, std::string& error);
  bool openTemporary(std::string& error);
  bool stopped(std::string& error) const;

  std::string name_;             ///< As the caller gave it, for sentences.
  std::filesystem::path target_; ///< With symbolic links resolved.
  std::filesystem::path directory_;
  std::filesystem::path temporary_; ///< Empty once there is none.
  System::Occupant replaced_;
  System::File file_;
  const Stop* stop_ = nullptr;
  int slot_ = -1; ///< Where the temporary is noted for `removeTemporaries`.
};

/// Removes the temporaries of all files not committed yet. For a signal handler that ends the process: calls
/// nothing that is not safe there.
void removeTemporaries() noexcept;

} // namespace Zamt
