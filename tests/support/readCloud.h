#pragma once

#include "files/Stop.h"
#include "host/clouds/cloudInfo.h"
#include "host/clouds/forEachBlock.h"

#include <array>
#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace Zamt::Testing {

/// For work that nobody stops.
inline const Stop goOn;

/// One component of all points; nothing if there is no such field.
inline std::vector<double> readField(const Host::PointCloud& cloud, const std::string& name,
                                     unsigned component = 0) {
  const Host::Field* const field = cloud.findField(name);
  std::vector<double> values(field == nullptr ? 0 : cloud.size());
  if (field == nullptr) return values;
  std::string problem;
  const auto visit = [&](Host::BlockReader& block) {
    block.column(*field, component).read(0, std::span(values).subspan(block.first(), block.size()));
  };
  EXPECT_TRUE(Host::walkBlocks(cloud, {}, goOn, visit, problem)) << problem;
  return values;
}

using Position = std::array<double, 3>;

/// Where all points are.
inline std::vector<Position> positionsOf(const Host::PointCloud& cloud) {
  std::vector<Position> positions(cloud.size());
  for (std::size_t axis = 0; axis < 3; ++axis) {
    const std::vector<double> values = readField(cloud, std::string(1, "XYZ"[axis]));
    for (std::size_t i = 0; i < positions.size(); ++i) positions[i][axis] = values[i];
  }
  return positions;
}

/// How many points each class has.
inline Host::ClassCounts countsOf(const Host::PointCloud& cloud) {
  Host::ClassCounts counts{};
  std::string problem;
  EXPECT_TRUE(Host::countClasses(cloud, goOn, counts, problem)) << problem;
  return counts;
}

/// Puts every point that `chosen` says into a class.
template <class Chosen>
void setClasses(Host::PointCloud& cloud, std::uint8_t number, const Chosen& chosen) {
  std::string problem;
  const auto visit = [&](Host::BlockReader& block) {
    std::vector<std::uint32_t> indices;
    for (std::uint32_t i = 0; i < block.size(); ++i)
      if (chosen(block.first() + i)) indices.push_back(i);
    cloud.setClass(block, indices, number);
  };
  EXPECT_TRUE(Host::forEachBlock(cloud, {}, goOn, visit, problem)) << problem;
}

} // namespace Zamt::Testing
