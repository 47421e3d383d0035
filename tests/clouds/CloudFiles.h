#pragma once

#include "host/clouds/openCloud.h"
#include "tests/support/TemporaryDirectory.h"
#include "tests/support/realClouds.h"

#include <cstring>
#include <gtest/gtest.h>
#include <string>

namespace Zamt::Testing {

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

/// A test with a directory of its own, and the real clouds where there are any.
class CloudFiles : public ::testing::Test, public TemporaryDirectory {
protected:
  /// A cloud that can be opened.
  static std::shared_ptr<Host::PointCloud> openWell(const std::string& file) {
    std::string error;
    auto cloud = Host::openCloud(file, error);
    EXPECT_TRUE(cloud) << error;
    return cloud;
  }

  static std::string data(const std::string& name) { return std::string(QUINDLE_TEST_DATA) + "/" + name; }
};

} // namespace Zamt::Testing
