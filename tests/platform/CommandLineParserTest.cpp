#include "cadmer/CommandLineParser.h"

#include <cstdlib>
#include <gmock/gmock.h>

namespace Zamt::Testing {
namespace {

using ::testing::ElementsAre;

TEST(CommandLineParserTest, TakesTheDirectoriesFromTheEnvironmentElseTheShareDirectoryBesideTheLibrary) {
  ::setenv("QUINDLE_DATA_DIRS", "/first:/second/::relative", 1);
  EXPECT_THAT(CommandLineParser::getDataDirs(), ElementsAre("/first", "/second/", "", "relative"));
  ::setenv("QUINDLE_DATA_DIRS", "", 1);
  EXPECT_THAT(CommandLineParser::getDataDirs(), ElementsAre());
  ::unsetenv("QUINDLE_DATA_DIRS");
  EXPECT_THAT(CommandLineParser::getDataDirs(), ElementsAre(::testing::EndsWith("/share/quindle")));
  EXPECT_EQ(CommandLineParser::getDataDirs().at(0).find(".."), std::string::npos);
}

} // namespace
} // namespace Zamt::Testing
