#include "tests/cli/quindle.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace Zamt::Testing;
using testing::HasSubstr;

namespace {

using Words = std::vector<std::string>;

TEST(Command, WrongUsageEndsWithTwoAndDoesNothing) {
  const TemporaryDirectory directory;
  const std::string good =
      directory.write("good.quindle", "quindle \"A\" { param p : Number = 1 on run { } }");
  const std::string here = directory.path();
  const std::vector<std::pair<Words, std::string>> cases{
      {{}, "No command is named."},
      {{"chekc"}, "There is no command called \"chekc\". Did you mean \"check\"?"},
      {{"check"}, "QUINDLE is required"},
      {{"fmt", "--check", "--write", good}, "--check excludes --write"},
      {{"fmt", "--drop-comments", good}, "--drop-comments requires --write"},
      {{"fmt", "--write", "-"}, "Standard input can't be replaced."},
      {{"registry", "--level", "young"}, "--level"},
      {{"sample", directory.path("a.las"), "--points", "-5"}, "--points"},
      {{"run", good, "a.las"}, "Write -o with a file or a directory, or --in-place."},
      {{"run", good, "a.las", "-o", "b.las", "--in-place"}, "--in-place"},
      {{"run", good, "x/a.las", "y/a.las", "-o", here}, "Two of the clouds would be written to"},
      {{"run", good, "a.las", "./a.las", "--in-place"}, "Two of the clouds would be written to"},
      {{"preview", good, "a.las", "--set", "p"}, "Write --set NAME=VALUE."},
      {{"preview", good, "a.las", "--region", "nowhere"}, "region"},
  };
  for (const auto& [words, said] : cases) {
    SCOPED_TRACE(testing::PrintToString(words));
    const CommandResult result = quindle(words);
    EXPECT_EQ(result.exitCode, 2);
    EXPECT_EQ(result.out, "");
    EXPECT_THAT(result.err, HasSubstr(said));
  }
}

TEST(Command, WhatEndsItEarlyIsOneSentenceAndAFailure) {
  const std::pair<CommandResult, std::string> cases[] = {
      {quindle({"--help"}, {.outputFile = "/dev/full"}),
       "error: The results could not be written to standard output: No space left on device.\n"},
      {quindle({"--help"}, {.closeOutput = true}), ""},
      {quindle({"check", "-"}, {.waitOnInput = true, .interruptAfter = std::chrono::seconds(1)}),
       "<stdin>: error: Interrupted, nothing was written.\n"}};
  for (const auto& [result, said] : cases) {
    EXPECT_EQ(result.exitCode, 1);
    EXPECT_EQ(result.err, said);
  }
}

} // namespace
