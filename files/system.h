#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <span>
#include <string>
#include <system_error>
#include <vector>

/// What writing a file asks of the system, and all that differs from one system to another. Each call that
/// can fail gives the system's own code, which compares with std::errc.
namespace Zamt::System {

/// An open file, closed at the end of its scope.
class File {
public:
  File() = default;
  explicit File(int handle) : handle_(handle) {}
  File(File&& other) noexcept : handle_(other.handle_) { other.handle_ = -1; }
  File& operator=(File&& other) noexcept;
  File(const File&) = delete;
  File& operator=(const File&) = delete;
  ~File() { close(); }

  bool isOpen() const { return handle_ >= 0; }
  int handle() const { return handle_; }

  /// Fails when the file system tells only now that it could not keep what was written.
  std::error_code close();

private:
  int handle_ = -1;
};

/// What stands under a name.
struct Occupant {
  enum class Kind { Nothing, File, Directory, Device, Other };
  Kind kind = Kind::Nothing;
  bool shared = false; ///< Of a file that has several names: another one in its place would part them.
  std::uint32_t permissions = 0; ///< Of a file, in the system's own bits, the special ones included.
  std::uint32_t owner = 0;       ///< Likewise.
  std::uint32_t group = 0;       ///< Likewise.
};

/// What `path` stands for once links are followed, the last of which may lead to nothing; not those that lead
/// to what a process has open, such as its standard output. Nothing when they lead in a circle or can't be
/// read.
std::optional<std::filesystem::path> followLinks(std::filesystem::path path);

/// Tells what stands at `path`, no link any more, and fails when it is a file that may not be given other
/// bytes. Neither changes the file nor waits for whoever reads a pipe.
std::error_code lookForWriting(const std::filesystem::path& path, Occupant& occupant);

/// Whether a new file may be made beside `path` and take its place.
bool mayReplace(const std::filesystem::path& path, const Occupant& occupant);

/// Opens what stands at `path`, no link any more, for other bytes in the place of its own.
std::error_code openForWriting(const std::filesystem::path& path, File& file);

/// Holds an open file for this process alone, until it is closed or the process ends in whatever way. False
/// while another holds it; file systems without locks leave every file to everybody.
bool hold(const File& file);

/// Whether `path` still leads to that open file, and to no other one that took its name.
bool standsUnder(const File& file, const std::filesystem::path& path);

/// Makes a new file that only its owner may read, and holds it until it is closed. Fails with `file_exists`
/// when the name is taken; but what a process that is gone left under it goes first.
std::error_code createHeld(const std::filesystem::path& path, File& file);

/// Gives the file the owner and permissions of the one it is to replace, or those of any new file.
std::error_code givePermissions(const File& file, const Occupant& replaced);

/// Makes room for that many bytes, as far as the file system knows how to.
std::error_code reserve(const File& file, std::uint64_t size);

/// Fills an empty file with the first `size` bytes of the one that is open for reading as `from`, by sharing
/// its blocks until either file is given others. Fails, and leaves the file empty, where the file system
/// can't.
std::error_code shareBlocks(const File& file, int from, std::uint64_t size);

/// Copies up to all of `size` bytes at a place of the file that is open for reading as `from`, without their
/// passing through this process. Fails where the file system can't; `copied` says how many were.
std::error_code copyAt(const File& file, std::uint64_t offset, int from, std::uint64_t fromOffset,
                       std::size_t size, std::size_t& copied);

/// Writes up to all of `bytes` at a place of the file; `written` says how many.
std::error_code writeAt(const File& file, std::uint64_t offset, std::span<const std::byte> bytes,
                        std::size_t& written);

/// Writes behind what was written, to what has no places to write at, such as a device.
std::error_code append(const File& file, std::span<const std::byte> bytes);

/// Ends the file behind that many bytes.
std::error_code cut(const File& file, std::uint64_t size);

/// Has the disk start on bytes that were written, so that `flush` has less to wait for. A hint.
void startFlush(const File& file, std::uint64_t offset, std::uint64_t size);

/// Waits until the disk holds what was written.
std::error_code flush(const File& file);

/// Gives the file at `from` the name `to`, in place of what stands there. Either name may be looked up at any
/// moment: it finds the old file or the new one.
std::error_code rename(const std::filesystem::path& from, const std::filesystem::path& to);

/// Makes names in a directory survive a power cut, where that is more than the file system does by itself.
void flushDirectory(const std::filesystem::path& directory);

/// The names in a directory, in no order; none if it can't be read. The iterator of the standard library does
/// not serve where a lack of memory has to be survived: that of GCC 12 ends the process.
std::vector<std::string> namesIn(const std::filesystem::path& directory);

/// Removes a name. Safe in a signal handler.
void remove(const char* path) noexcept;

} // namespace Zamt::System
