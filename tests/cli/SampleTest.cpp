#include "tests/cli/quindle.h"

#include <gtest/gtest.h>

using namespace Zamt::Testing;

namespace {

TEST(Sample, MakesTheSameFilesFromTheSameNumbers) {
  const TemporaryDirectory directory;
  const auto make = [&](const std::string& name, const std::string& seed) {
    EXPECT_EQ(quindle({"sample", directory.path(name), "--points", "5000", "--seed", seed}).exitCode, 0);
    return readFile(directory.path(name));
  };
  const std::string first = make("a.las", "7");
  EXPECT_EQ(first, make("b.las", "7"));
  EXPECT_NE(first, make("c.las", "8"));
  EXPECT_EQ(readFile(directory.path("a-water.ply")), readFile(directory.path("b-water.ply")));
}

TEST(Sample, ReplacesNothingUnasked) {
  const TemporaryDirectory directory;
  directory.write("a-water.ply", "mine");
  const std::string cloud = directory.path("a.las");
  EXPECT_EQ(quindle({"sample", cloud, "--points", "10"}).exitCode, 2);
  EXPECT_EQ(readFile(directory.path("a-water.ply")), "mine");
  EXPECT_FALSE(std::filesystem::exists(cloud));
  EXPECT_EQ(quindle({"sample", cloud, "--points", "10", "--force"}).exitCode, 0);
}

} // namespace
