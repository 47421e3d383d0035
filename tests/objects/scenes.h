#pragma once

#include "host/objects/Scene.h"
#include "host/points/SampleFiles.h"
#include "tests/support/parsed.h"

#include <filesystem>
#include <gtest/gtest.h>
#include <string>
#include <unistd.h>

namespace Zamt::Testing {

/// A directory of its own for each test, gone with it.
class SceneTest : public testing::Test {
public:
  SceneTest() {
    const auto* info = testing::UnitTest::GetInstance()->current_test_info();
    directory = std::filesystem::temp_directory_path() /
                ("quindle-" + std::string(info->name()) + "-" + std::to_string(getpid()));
    std::filesystem::create_directories(directory);
  }
  ~SceneTest() override { std::filesystem::remove_all(directory); }

  std::string path(const std::string& name) const { return (directory / name).string(); }

  /// A small sample scene; its water surface is "lake-water.ply".
  std::string sample(std::uint64_t points = 6000) const {
    std::string problem;
    EXPECT_TRUE(Host::writeSample(Host::makeSampleScene(points, 7), path("lake.las"), path("lake-water.ply"),
                                  problem))
        << problem;
    return path("lake.las");
  }

  /// A real file; the test is to be skipped when this is empty.
  static std::string real(const std::string& name) {
    const std::string file = std::string(QUINDLE_TEST_DATA) + "/" + name;
    return std::filesystem::exists(file) ? file : std::string();
  }

  std::filesystem::path directory;
};

#define REQUIRE_REAL(file)                                                                                   \
  if ((file).empty()) GTEST_SKIP() << "The folder with the real clouds is not there."

} // namespace Zamt::Testing
