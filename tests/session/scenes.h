#pragma once

#include "host/sample/SampleFiles.h"
#include "host/session/Scene.h"
#include "tests/support/ArrayCloud.h"
#include "tests/support/TemporaryDirectory.h"
#include "tests/support/parsed.h"
#include "tests/support/realClouds.h"

#include <gtest/gtest.h>
#include <string>

namespace Zamt::Testing {

/// A test with a directory of its own.
class SceneTest : public testing::Test, public TemporaryDirectory {
public:
  /// A small sample scene; its water surface is "lake-water.ply".
  std::string sample(std::uint64_t points = 6000) const {
    std::string problem;
    EXPECT_TRUE(Host::writeSample(Host::makeSampleScene(points, 7), path("lake.las"), path("lake-water.ply"),
                                  goOn, problem))
        << problem;
    return path("lake.las");
  }

  /// A real file; a test of one starts with REQUIRE_REAL_CLOUDS.
  static std::string real(const std::string& name) { return std::string(QUINDLE_TEST_DATA) + "/" + name; }
};

} // namespace Zamt::Testing
