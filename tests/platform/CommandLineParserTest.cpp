#include "cadmer/CommandLineParser.h"

#include <cstdlib>
#include <gmock/gmock.h>

namespace Zamt::Testing {
namespace {

using ::testing::ElementsAre;
using ::testing::EndsWith;
using ::testing::IsEmpty;

class CommandLineParserTest : public ::testing::Test {
protected:
  static void setDirectories(const char* text) { ::setenv("QUINDLE_DATA_DIRS", text, 1); }
  void TearDown() override { ::unsetenv("QUINDLE_DATA_DIRS"); }
};

TEST_F(CommandLineParserTest, TakesTheDirectoriesFromTheEnvironmentAsTheyStand) {
  setDirectories("/first:/second/::relative");
  EXPECT_THAT(CommandLineParser::getDataDirs(), ElementsAre("/first", "/second/", "", "relative"));
}

TEST_F(CommandLineParserTest, AVariableSetToNothingMeansNoDirectories) {
  setDirectories("");
  EXPECT_THAT(CommandLineParser::getDataDirs(), IsEmpty());
}

TEST_F(CommandLineParserTest, FallsBackOnTheShareDirectoryBesideTheLibrary) {
  ::unsetenv("QUINDLE_DATA_DIRS");
  const auto directories = CommandLineParser::getDataDirs();
  ASSERT_EQ(directories.size(), 1U);
  EXPECT_THAT(directories[0], EndsWith("/share/quindle"));
  EXPECT_EQ(directories[0].find(".."), std::string::npos);
}

} // namespace
} // namespace Zamt::Testing
