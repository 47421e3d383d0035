#pragma once

#include <cstddef>
#include <memory>
#include <span>
#include <string>

namespace Zamt {

/// A regular file, mapped into memory for reading. The descriptor stays open, so that the bytes remain those
/// of this file even when another one takes its name.
class MappedFile {
public:
  /// Null when the file can't be mapped, with a sentence in `error`.
  static std::unique_ptr<MappedFile> open(const std::string& path, std::string& error);

  ~MappedFile();
  MappedFile(const MappedFile&) = delete;
  MappedFile& operator=(const MappedFile&) = delete;

  std::span<const std::byte> bytes() const { return content_; }
  int descriptor() const { return file_; }

private:
  explicit MappedFile(int descriptor) : file_(descriptor) {}
  int file_;
  std::span<const std::byte> content_;
};

} // namespace Zamt
