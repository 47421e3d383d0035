#include "tests/cli/quindle.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <regex>
#include <sstream>

using namespace Zamt::Testing;
using testing::HasSubstr;
using testing::StartsWith;

namespace {

using Words = std::vector<std::string>;

std::string printed(const Words& words) {
  const CommandResult result = quindle(words);
  EXPECT_EQ(result.exitCode, 0) << testing::PrintToString(words) << result.err;
  EXPECT_EQ(result.err, "");
  return result.out;
}

/// The names listed in `text` under a heading: those at the start of indented lines.
Words listed(const std::string& text, const std::regex& headings) {
  Words names;
  bool wanted = false;
  std::istringstream lines(text);
  for (std::string line; std::getline(lines, line);) {
    if (line.ends_with(':')) wanted = std::regex_match(line, headings);
    if (wanted && line.starts_with("  ") && line[2] != ' ')
      names.push_back(line.substr(2, line.find(' ', 2) - 2));
  }
  return names;
}

Words commands() { return listed(printed({"--help"}), std::regex("(?!Options:|Example:|Usage:).*")); }

TEST(Help, SaysOfEachCommandWhatItsOwnHelpSays) {
  const Words names = commands();
  ASSERT_THAT(names, testing::IsSupersetOf({"sample", "run", "check", "keys", "help"}));
  for (const std::string& name : names) {
    const std::string text = printed({name, "--help"});
    EXPECT_EQ(printed({"help", name}), text);
    EXPECT_THAT(text, HasSubstr("\nExample:\n  quindle " + name + ' '));
    EXPECT_FALSE(std::regex_search(text, std::regex("[^\\n]{81}"))) << text;
  }
  EXPECT_THAT(printed({"help"}), StartsWith(printed({"--help"})));
}

TEST(Help, TheManualPageHoldsEveryCommandOptionAndTopic) {
  const std::string page = printed({"help", "--man"});
  for (const std::string& name : commands()) {
    EXPECT_THAT(page, HasSubstr("\n\\fBquindle " + name + ' '));
    for (const std::string& option : listed(printed({name, "--help"}), std::regex("Options:|Arguments:"))) {
      const std::string spelled = std::regex_replace(option, std::regex("-"), "\\-");
      EXPECT_THAT(page, HasSubstr("\n.TP\n\\fB" + spelled)) << name;
    }
  }
  for (const std::string section :
       {"NAME", "SYNOPSIS", "DESCRIPTION", "COMMANDS", "OPTIONS", "COLLECTION", "REGIONS", "VALUES", "OUTPUT",
        "SCRIPTING", "ENVIRONMENT", "EXIT STATUS", "EXAMPLES"})
    EXPECT_THAT(page, HasSubstr("\n.SH " + section + '\n'));
}

TEST(Help, TheManualPageIsSoundRoff) {
  const TemporaryDirectory directory;
  const std::string page = directory.write("quindle.1", printed({"help", "--man"}));
  bool checked = false;
  // The page bears no date, so that the same sources give the same page; mandoc would warn of that.
  for (const Words& tool : {Words{"/usr/bin/groff", "-man", "-Tutf8", "-ww", "-z", page},
                            Words{"/usr/bin/mandoc", "-Tlint", "-Werror", page}}) {
    if (!std::filesystem::exists(tool.front())) continue;
    checked = true;
    const CommandResult result = runCommand(tool);
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_EQ(result.out + result.err, "");
  }
  if (!checked) GTEST_SKIP() << "Neither groff nor mandoc is here to check the manual page with.";
}

} // namespace
