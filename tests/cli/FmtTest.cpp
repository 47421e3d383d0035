#include "tests/cli/quindle.h"

#include <gtest/gtest.h>

#include <random>

using namespace Zamt::Testing;

namespace {

using Words = std::vector<std::string>;

std::vector<std::filesystem::path> examples() {
  std::vector<std::filesystem::path> found;
  for (const auto& entry : std::filesystem::directory_iterator(QUINDLE_SOURCE_DIR "/examples"))
    if (entry.path().extension() == ".quindle") found.push_back(entry.path());
  return found;
}

/// The text with other white space between its tokens, and with some or none beside brackets and commas.
/// Texts and comments stay, and so does the line end behind a comment.
std::string scrambled(const std::string& text, std::mt19937& random) {
  const std::string blanks = " \t\r\n";
  const std::string loose = "(){}[],:";
  const Words gaps{" ", "\t", "\n", "\r\n", "  \n\n\t "};
  std::string out;
  for (std::size_t at = 0; at < text.size();) {
    std::size_t end = at + 1;
    const bool comment = text[at] == '#';
    if (comment)
      end = text.find('\n', at) + 1;
    else if (text[at] == '"')
      end = text.find('"', at + 1) + 1;
    else if (blanks.find(text[at]) != std::string::npos)
      end = text.find_first_not_of(blanks, at);
    const std::string token = text.substr(at, end - at);
    const std::string& gap = gaps[random() % gaps.size()];
    const bool mayVanish = end < text.size() && (loose.find(text[end]) != std::string::npos ||
                                                 (at > 0 && loose.find(text[at - 1]) != std::string::npos));
    if (token.find_first_not_of(blanks) == std::string::npos)
      out += mayVanish && random() % 2 == 0 ? "" : gap;
    else
      out += token + (loose.find(token[0]) != std::string::npos && random() % 2 == 0 ? gap : "");
    at = end;
  }
  return out;
}

TEST(Fmt, LeavesTheExamplesAsTheyAreAndRestoresThemWhenTheirSpacingIsScrambled) {
  const TemporaryDirectory directory;
  Words shipped{"fmt", "--check"};
  for (const auto& path : examples()) shipped.push_back(path.string());
  ASSERT_GE(shipped.size(), 9U);
  const CommandResult untouched = quindle(shipped);
  EXPECT_EQ(untouched.out + untouched.err, "");
  EXPECT_EQ(untouched.exitCode, 0);

  std::mt19937 random(7);
  for (int round = 0; round < 4; ++round) {
    Words words{"fmt", "--write"};
    for (const auto& path : examples())
      words.push_back(directory.write(path.filename(), scrambled(readFile(path), random)));
    EXPECT_EQ(quindle(words).exitCode, 0);
    for (const auto& path : examples())
      EXPECT_EQ(readFile(directory.path(path.filename())), readFile(path)) << path;
  }
}

} // namespace
