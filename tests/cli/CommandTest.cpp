#include "tests/cli/quindle.h"
#include "tests/support/environment.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>

using namespace Zamt::Testing;
using testing::StartsWith;

namespace {

TEST(Command, ALostReaderAndAnInterruptEndIt) {
  const std::pair<CommandResult, std::string> cases[] = {
      {quindle({"--help"}, {.closeOutput = true}), ""},
      {quindle({"check", "-"}, {.waitOnInput = true, .interruptAfter = std::chrono::seconds(1)}),
       "<stdin>: error: Interrupted, nothing was written.\n"}};
  for (const auto& [result, said] : cases) {
    EXPECT_EQ(result.exitCode, 1);
    EXPECT_EQ(result.err, said);
  }
}

/// Runs "reference comments" with its results going to a terminal, and gives what the pager then wrote.
std::string pagedBy(const std::string& pager, const TemporaryDirectory& directory) {
  const int terminal = ::posix_openpt(O_RDWR | O_NOCTTY);
  if (terminal < 0 || ::grantpt(terminal) != 0 || ::unlockpt(terminal) != 0) return "no terminal";
  const Environment environment{{"PAGER", pager}};
  const CommandResult result =
      quindle({"reference", "comments"}, {.directory = directory.path(), .outputFile = ::ptsname(terminal)});
  std::array<char, 12> shown{};
  std::size_t filled = 0;
  // A terminal hands on in pieces; behind the last one, reading fails, since the other end is closed.
  while (filled < shown.size()) {
    const ssize_t got = ::read(terminal, shown.data() + filled, shown.size() - filled);
    if (got <= 0) break;
    filled += static_cast<std::size_t>(got);
  }
  ::close(terminal);
  EXPECT_EQ(result.exitCode, 0);
  return std::string(shown.data(), filled);
}

TEST(Command, TheManualIsPagedOnATerminalOnly) {
  const TemporaryDirectory directory;
  EXPECT_EQ(pagedBy("tee paged | head -c 4; echo .", directory), "Comm.\r\n");
  EXPECT_THAT(readFile(directory.path("paged")), StartsWith("Comments\n\n"));
  EXPECT_EQ(pagedBy("./no-such-pager", directory), "Comments\r\n\r\n");
  EXPECT_EQ(pagedBy("", directory), "Comments\r\n\r\n");
}

} // namespace
