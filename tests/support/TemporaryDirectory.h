#pragma once

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <set>
#include <string>

namespace Zamt::Testing {

/// A directory that is gone, with all it holds, at the end of its scope.
class TemporaryDirectory {
public:
  TemporaryDirectory() {
    std::string pattern = (std::filesystem::temp_directory_path() / "quindle-test-XXXXXX").string();
    if (::mkdtemp(pattern.data()) != nullptr) directory = pattern;
  }
  TemporaryDirectory(const TemporaryDirectory&) = delete;
  TemporaryDirectory& operator=(const TemporaryDirectory&) = delete;
  ~TemporaryDirectory() {
    std::error_code ignored;
    if (!directory.empty()) std::filesystem::remove_all(directory, ignored);
  }

  /// The path of a file in it, or its own.
  std::string path(const std::string& name = {}) const {
    return name.empty() ? directory.string() : (directory / name).string();
  }

  std::string write(const std::string& name, const std::string& bytes) const {
    std::ofstream(path(name), std::ios::binary) << bytes;
    return path(name);
  }

  std::set<std::string> names() const {
    std::set<std::string> all;
    for (const auto& entry : std::filesystem::directory_iterator(directory))
      all.insert(entry.path().filename());
    return all;
  }

private:
  std::filesystem::path directory;
};

/// The bytes of a file; empty when it can't be read.
inline std::string readFile(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

} // namespace Zamt::Testing
