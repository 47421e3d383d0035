/// Runs docs/tutorial.md. A block "```quindle NAME" is written to the file NAME; of a block "```console" each
/// line "$ quindle ..." is run, and what stands below it is what the command has to print: its results, then
/// its messages. After a change that is meant, this writes the outputs anew; look at the difference before
/// committing it:
///
///   QUINDLE_REFRESH_GOLDEN=1 build/dev/bin/tests-cli --gtest_filter='Tutorial.*'
#include "tests/cli/quindle.h"
#include "tests/support/environment.h"

#include <gtest/gtest.h>

#include <sstream>

namespace Zamt::Testing {
namespace {

const std::string tutorialFile = QUINDLE_SOURCE_DIR "/docs/tutorial.md";
const std::string prompt = "$ quindle ";

/// The words of a command line as a shell would part them, as far as the tutorial goes: by blanks outside
/// double quotes.
std::vector<std::string> wordsOf(const std::string& line) {
  std::vector<std::string> words(1);
  bool quoted = false;
  for (const char c : line) {
    if (c == '"')
      quoted = !quoted;
    else if (c == ' ' && !quoted)
      words.emplace_back();
    else
      words.back() += c;
  }
  return words;
}

std::string firstWord(const std::string& text) { return text.substr(0, text.find(' ')); }

class Tutorial : public testing::Test {
protected:
  void SetUp() override {
    std::istringstream text(readFile(tutorialFile));
    for (std::string line; std::getline(text, line);) lines.push_back(line);
  }

  bool inBlock() const { return next < lines.size() && lines[next] != "```"; }

  /// Takes the lines of a block up to its end or to the next command.
  std::string takeText(bool stopAtPrompt) {
    std::string text;
    while (inBlock() && !(stopAtPrompt && lines[next].starts_with(prompt))) text += lines[next++] + '\n';
    return text;
  }

  /// What the command prints, with the reader's home in place of the directory that the test made.
  std::string printed(const std::string& command) {
    const CommandResult result = quindle(wordsOf(command), {.directory = directory.path()});
    EXPECT_TRUE(result.exitCode == 0 || result.exitCode == 1) << result.exitCode;
    std::string text = result.out + result.err;
    for (std::size_t at = 0; (at = text.find(directory.path(), at)) != std::string::npos;)
      text.replace(at, directory.path().size(), "/home/you");
    return text;
  }

  void runConsole() {
    while (inBlock()) {
      const std::string line = lines[next++];
      ASSERT_TRUE(line.starts_with(prompt)) << tutorialFile << ':' << next << ": " << line;
      SCOPED_TRACE(tutorialFile + ':' + std::to_string(next) + ": " + line);
      const std::string expected = takeText(true);
      const std::string actual = printed(line.substr(prompt.size()));
      EXPECT_EQ(actual, refreshing ? actual : expected);
      refreshed += line + '\n' + actual;
      ++commands;
    }
  }

  const bool refreshing = std::getenv("QUINDLE_REFRESH_GOLDEN") != nullptr;
  TemporaryDirectory directory;
  /// The reader has no Quindles yet, neither of their own nor installed.
  Environment environment{{"APPDATA", {}},
                          {"XDG_DATA_HOME", {}},
                          {"HOME", directory.path()},
                          {"QUINDLE_DATA_DIRS", directory.path("share")}};
  std::vector<std::string> lines;
  std::size_t next = 0;
  std::size_t commands = 0;
  std::string refreshed; ///< The document with the outputs as they are now.
};

TEST_F(Tutorial, ShowsWhatTheCommandPrints) {
  while (next < lines.size() && !HasFatalFailure()) {
    const std::string line = lines[next++];
    refreshed += line + '\n';
    if (line == "```console") {
      runConsole();
    } else if (firstWord(line) == "```quindle") {
      const std::string text = takeText(false);
      directory.write(line.substr(line.find(' ') + 1), text);
      refreshed += text;
    } else {
      EXPECT_FALSE(line.starts_with("```") && line != "```") << tutorialFile << ':' << next << ": " << line;
      continue;
    }
    refreshed += "```\n";
    ++next;
  }
  EXPECT_GT(commands, 20U);
  if (refreshing && !HasFatalFailure()) std::ofstream(tutorialFile, std::ios::binary) << refreshed;
}

} // namespace
} // namespace Zamt::Testing
