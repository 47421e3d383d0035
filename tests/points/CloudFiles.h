#pragma once

#include "host/points/PointCloud.h"

#include <algorithm>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <string>
#include <unistd.h>
#include <vector>

namespace Zamt::Testing {

/// The bytes of a file; empty when it can't be read.
inline std::string bytesOf(const std::filesystem::path& path) {
  std::ifstream in(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

inline void putBytes(const std::filesystem::path& path, const std::string& bytes) {
  std::ofstream(path, std::ios::binary) << bytes;
}

/// A number in the bytes of a file.
template <class T>
T numberAt(const std::string& bytes, std::size_t at) {
  T value;
  std::memcpy(&value, bytes.data() + at, sizeof(T));
  return value;
}

template <class T>
void putNumber(std::string& bytes, std::size_t at, T value) {
  std::memcpy(bytes.data() + at, &value, sizeof(T));
}

/// A test with a directory of its own, gone afterwards, and the real clouds where there are any.
class CloudFiles : public ::testing::Test {
protected:
  CloudFiles() {
    std::string pattern = (std::filesystem::temp_directory_path() / "cloudsXXXXXX").string();
    directory = ::mkdtemp(pattern.data());
  }
  ~CloudFiles() override { std::filesystem::remove_all(directory); }

  std::string path(const std::string& name) const { return (directory / name).string(); }

  std::vector<std::string> filesLeft() const {
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(directory))
      names.push_back(entry.path().filename().string());
    std::ranges::sort(names);
    return names;
  }

  static std::string data(const std::string& name) { return std::string(QUINDLE_TEST_DATA) + "/" + name; }
  static bool hasData() { return std::filesystem::exists(QUINDLE_TEST_DATA); }

  std::filesystem::path directory;
};

} // namespace Zamt::Testing
