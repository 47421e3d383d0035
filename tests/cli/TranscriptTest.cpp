/// Runs documents. A block "```quindle NAME" or "```text NAME" is written to the file NAME. Of a block
/// "```console" each line "$ ..." is a command for the shell, which lines "> ..." go on with; what stands
/// below is what it has to print: its results, then its messages. In the tests' own documents each message
/// bears a "! " in front, and what fails ends in its exit code: "[1]". With QUINDLE_REFRESH_GOLDEN set, the
/// outputs are written anew.
#include "tests/cli/quindle.h"
#include "tests/support/environment.h"
#include "tests/support/realClouds.h"

#include <gtest/gtest.h>

#include <sstream>

namespace Zamt::Testing {
namespace {

const std::string prompt = "$ ";
const std::string continued = "> ";
const std::string commandDirectory = std::filesystem::path(QUINDLE_COMMAND).parent_path();

std::string replaced(std::string text, const std::string& what, const std::string& by) {
  for (std::size_t at = 0; (at = text.find(what, at)) != std::string::npos; at += by.size())
    text.replace(at, what.size(), by);
  return text;
}

/// The text with "! " in front of each of its lines.
std::string marked(const std::string& messages) {
  std::istringstream lines(messages);
  std::string text;
  for (std::string line; std::getline(lines, line);) text += "! " + line + '\n';
  return text;
}

class Transcript : public testing::TestWithParam<std::string> {
protected:
  void SetUp() override {
    std::istringstream text(readFile(file));
    for (std::string line; std::getline(text, line);) lines.push_back(line);
    if (!ofTests) return;
    std::filesystem::create_directory_symlink(QUINDLE_SOURCE_DIR "/examples", directory.path("examples"));
    std::filesystem::create_directory_symlink(QUINDLE_TEST_DATA, directory.path("data"));
  }

  bool inBlock() const { return next < lines.size() && lines[next] != "```"; }

  /// Takes the lines of a block up to its end or to the next command.
  std::string takeText(bool stopAtPrompt) {
    std::string text;
    while (inBlock() && !(stopAtPrompt && lines[next].starts_with(prompt))) text += lines[next++] + '\n';
    return text;
  }

  /// What a command prints, with the reader's home in place of the directory that the test made.
  std::string printed(const std::string& command) {
    const CommandResult result = runCommand({"/bin/sh", "-c", command}, directory.path());
    std::string text = result.out + (ofTests ? marked(result.err) : result.err);
    if (!text.empty() && !text.ends_with('\n')) text += "(no line end)\n";
    if (ofTests && result.exitCode != 0) text += '[' + std::to_string(result.exitCode) + "]\n";
    EXPECT_TRUE(ofTests || result.exitCode == 0 || result.exitCode == 1) << result.exitCode;
    return replaced(text, directory.path(), "/home/you");
  }

  void runConsole() {
    while (inBlock()) {
      std::string line = lines[next++];
      SCOPED_TRACE(file + ':' + std::to_string(next) + ": " + heading + ": " + line);
      ASSERT_TRUE(line.starts_with(prompt));
      std::string command = line.substr(prompt.size());
      for (; inBlock() && lines[next].starts_with(continued); ++next) {
        command.append("\n").append(lines[next], continued.size());
        line.append("\n").append(lines[next]);
      }
      const std::string expected = takeText(true);
      const std::string actual = printed(command);
      EXPECT_EQ(actual, refreshing ? actual : expected);
      refreshed.append(line).append("\n").append(actual);
      ++commands;
    }
  }

  const std::string file = QUINDLE_SOURCE_DIR "/" + GetParam();
  const bool ofTests = GetParam().starts_with("tests/");
  const bool refreshing = std::getenv("QUINDLE_REFRESH_GOLDEN") != nullptr;
  TemporaryDirectory directory;
  /// The reader has no Quindles yet, neither of their own nor installed.
  Environment environment{{"APPDATA", {}},
                          {"XDG_DATA_HOME", {}},
                          {"HOME", directory.path()},
                          {"QUINDLE_DATA_DIRS", directory.path("share")},
                          {"LC_ALL", "C"},
                          {"PATH", commandDirectory + ":/usr/bin:/bin"}};
  std::vector<std::string> lines;
  std::string heading; ///< The last one met.
  std::size_t next = 0;
  std::size_t commands = 0;
  std::string refreshed; ///< The document with the outputs as they are now.
};

TEST_P(Transcript, ShowsWhatTheCommandPrints) {
  if (file.ends_with("/real-clouds.md")) REQUIRE_REAL_CLOUDS();
  while (next < lines.size() && !HasFatalFailure()) {
    const std::string line = lines[next++];
    refreshed += line + '\n';
    if (line == "```console") {
      runConsole();
    } else if (line.starts_with("```quindle ") || line.starts_with("```text ")) {
      const std::string text = takeText(false);
      directory.write(line.substr(line.find(' ') + 1), text);
      refreshed += text;
    } else {
      EXPECT_FALSE(line.starts_with("```") && line != "```") << file << ':' << next << ": " << line;
      if (line.starts_with('#')) heading = line.substr(line.find(' ') + 1);
      continue;
    }
    refreshed += "```\n";
    ++next;
  }
  EXPECT_GT(commands, 0U);
  if (refreshing && !HasFatalFailure()) std::ofstream(file, std::ios::binary) << refreshed;
}

INSTANTIATE_TEST_SUITE_P(, Transcript,
                         testing::Values("docs/tutorial.md", "tests/cli/transcripts/check-and-plan.md",
                                         "tests/cli/transcripts/classes.md",
                                         "tests/cli/transcripts/collection.md",
                                         "tests/cli/transcripts/fmt.md", "tests/cli/transcripts/lookup.md",
                                         "tests/cli/transcripts/one-line.md",
                                         "tests/cli/transcripts/real-clouds.md",
                                         "tests/cli/transcripts/run.md", "tests/cli/transcripts/usage.md"),
                         [](const auto& document) {
                           const std::string name = std::filesystem::path(document.param).stem();
                           return replaced(name, "-", "_");
                         });

} // namespace
} // namespace Zamt::Testing
