#pragma once

#include "host/clouds/buildCloud.h"
#include "tests/support/ArrayCloud.h"
#include "tests/support/TemporaryDirectory.h"

#include <gtest/gtest.h>

namespace Zamt::Testing {

/// One point of a cloud made for a test.
struct TestPoint {
  std::array<std::int32_t, 3> stored{}; ///< In hundredths of a unit.
  std::uint16_t intensity = 0;
  std::uint8_t number = 0; ///< Of the class.
  std::array<float, 3> normal{};
};

/// These points as a cloud with its origin at (1000, -500, 0) and the fields NormalVectorX, NormalVectorY and
/// NormalVectorZ. Its file is gone when this returns; the cloud's map of it lives on.
inline std::shared_ptr<Host::PointCloud> makeTestCloud(const std::vector<TestPoint>& points) {
  Host::NewCloud description;
  description.scale = {0.01, 0.01, 0.01};
  description.origin = {1000, -500, 0};
  for (const char* axis : {"X", "Y", "Z"})
    description.extraFields.push_back({std::string("NormalVector") + axis, Host::FieldType::F32});
  const auto fill = [&](std::uint64_t i, Host::NewPoint& made) {
    const TestPoint& point = points[i];
    for (std::size_t axis = 0; axis < 3; ++axis)
      made.position[axis] = description.origin[axis] + point.stored[axis] * 0.01;
    made.intensity = point.intensity;
    made.classification = point.number;
    made.extra.assign(point.normal.begin(), point.normal.end());
  };
  const TemporaryDirectory directory;
  std::string error;
  EXPECT_TRUE(buildCloud(description, points.size(), fill, directory.path("a.las"), goOn, error)) << error;
  auto cloud = Host::openCloud(directory.path("a.las"), error);
  EXPECT_NE(cloud, nullptr) << error;
  return cloud;
}

/// The same points in a compressed file, which is gone when this returns.
inline std::shared_ptr<Host::PointCloud> asLaz(const Host::PointCloud& cloud) {
  const TemporaryDirectory directory;
  std::string error;
  EXPECT_TRUE(cloud.write({}, directory.path("a.laz"), goOn, error)) << error;
  auto compressed = Host::openCloud(directory.path("a.laz"), error);
  EXPECT_NE(compressed, nullptr) << error;
  return compressed;
}

/// A real cloud, or null where there is none.
inline std::shared_ptr<Host::PointCloud> openTestData(const std::string& name) {
  std::string error;
  return Host::openCloud(std::string(QUINDLE_TEST_DATA) + "/" + name, error);
}

} // namespace Zamt::Testing
