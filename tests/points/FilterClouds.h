#pragma once

#include "host/points/PointCloud.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <array>
#include <bit>
#include <cstdint>
#include <cstdio>
#include <fstream>
#include <memory>
#include <string>
#include <vector>

namespace Zamt::Testing {

/// One point of a cloud made for a test.
struct TestPoint {
  std::array<std::int32_t, 3> stored{}; ///< In hundredths of a unit.
  std::uint16_t intensity = 0;
  std::uint8_t number = 0; ///< Of the class.
  std::array<float, 3> normal{};
};

/// Puts the bytes of numbers one behind the other, lowest byte first.
class ByteWriter {
public:
  template <typename T>
  void put(T value) {
    const auto raw = std::bit_cast<std::array<char, sizeof(T)>>(value);
    bytes.append(raw.data(), raw.size());
  }
  void text(const std::string& value, std::size_t width) {
    bytes += value;
    bytes.append(width - value.size(), '\0');
  }
  void zeros(std::size_t count) { bytes.append(count, '\0'); }
  std::string bytes;
};

/// The extra bytes record of a float field.
inline void putFloatField(ByteWriter& out, const std::string& name) {
  out.zeros(2);
  out.put<std::uint8_t>(9);
  out.put<std::uint8_t>(0);
  out.text(name, 32);
  out.zeros(192 - 36);
}

/// A LAS 1.4 file of format 6, scale 0.01, with the float fields NormalVectorX, NormalVectorY and
/// NormalVectorZ in its extra bytes.
inline std::string lasBytes(const std::vector<TestPoint>& points) {
  constexpr std::uint32_t dataOffset = 375 + 54 + 3 * 192;
  ByteWriter out;
  out.text("LASF", 24);
  out.put<std::uint8_t>(1);
  out.put<std::uint8_t>(4);
  out.zeros(94 - 26);
  out.put<std::uint16_t>(375);
  out.put(dataOffset);
  out.put<std::uint32_t>(1);
  out.put<std::uint8_t>(6);
  out.put<std::uint16_t>(30 + 12);
  out.zeros(131 - 107);
  for (const double value : {0.01, 0.01, 0.01, 1000.0, -500.0, 0.0}) out.put(value);
  out.zeros(247 - 179);
  out.put<std::uint64_t>(points.size());
  out.zeros(375 - 255);
  out.zeros(2);
  out.text("LASF_Spec", 16);
  out.put<std::uint16_t>(4);
  out.put<std::uint16_t>(3 * 192);
  out.zeros(32);
  for (const char* axis : {"X", "Y", "Z"}) putFloatField(out, std::string("NormalVector") + axis);
  for (const TestPoint& point : points) {
    for (const std::int32_t value : point.stored) out.put(value);
    out.put(point.intensity);
    out.zeros(2);
    out.put(point.number);
    out.zeros(13);
    for (const float value : point.normal) out.put(value);
  }
  return out.bytes;
}

/// These points as a cloud. The file is gone from its directory when this returns; the cloud's map of it
/// lives on.
inline std::shared_ptr<Host::PointCloud> makeTestCloud(const std::vector<TestPoint>& points) {
  const std::string path = testing::TempDir() + "filters-" + std::to_string(getpid()) + ".las";
  std::ofstream(path, std::ios::binary) << lasBytes(points);
  std::string error;
  std::shared_ptr<Host::PointCloud> cloud = Host::PointCloud::open(path, error);
  EXPECT_NE(cloud, nullptr) << error;
  std::remove(path.c_str());
  return cloud;
}

/// A real cloud, or null where there is none.
inline std::shared_ptr<Host::PointCloud> openTestData(const std::string& name) {
  std::string error;
  return Host::PointCloud::open(std::string(QUINDLE_TEST_DATA) + "/" + name, error);
}

/// One component of all points.
inline std::vector<double> readField(const Host::PointCloud& cloud, const std::string& name) {
  std::vector<double> values(cloud.size());
  const Host::Field* field = cloud.findField(name);
  if (field == nullptr) return values;
  for (std::uint32_t i = 0; i < values.size(); ++i) {
    const std::array<std::uint32_t, 1> index{i % Host::blockPoints};
    cloud.gather(*field, 0, i - index[0], index, std::span(values).subspan(i, 1));
  }
  return values;
}

} // namespace Zamt::Testing
