#pragma once

#include "fuzz/require.h"

#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <sys/mman.h>
#include <unistd.h>

namespace Zamt::Fuzz {

/// Bytes as a file that lies in memory, for the time of its scope.
class MemoryFile {
public:
  MemoryFile(const std::uint8_t* data, std::size_t size) : file_(memfd_create("cloud", 0)) {
    require(write(file_, data, size) == static_cast<ssize_t>(size), "the bytes reach the file");
  }
  MemoryFile(const MemoryFile&) = delete;
  MemoryFile& operator=(const MemoryFile&) = delete;
  ~MemoryFile() { close(file_); }

  std::string path() const { return "/proc/self/fd/" + std::to_string(file_); }

private:
  int file_;
};

/// A directory to write to, in memory where the system has such a place; gone at the end of the process.
class Folder {
public:
  Folder() {
    const std::filesystem::path memory = "/dev/shm";
    const auto parent =
        std::filesystem::is_directory(memory) ? memory : std::filesystem::temp_directory_path();
    path_ = (parent / "quindle-fuzz-XXXXXX").string();
    require(mkdtemp(path_.data()) != nullptr, "there is a directory to write to");
  }
  Folder(const Folder&) = delete;
  Folder& operator=(const Folder&) = delete;
  ~Folder() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
  }

  std::string path(const std::string& name) const { return path_ + '/' + name; }

private:
  std::string path_;
};

} // namespace Zamt::Fuzz
