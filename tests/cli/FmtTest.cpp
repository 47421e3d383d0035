#include "tests/cli/quindle.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <random>
#include <sys/stat.h>

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

const std::string tidy = "quindle \"A\" {\n    on run {\n        report \"x\"\n    }\n}\n";
const std::string untidy = "quindle \"A\" { on run { report \"x\" } }";

struct Case {
  Words options;
  std::string text;
  int exitCode;
  std::string out;
  std::string err;
  std::string after; ///< The file afterwards; empty for as it was.
};

const std::string moved = "f:1: warning: The canonical layout moves this comment to the start of the block "
                          "of line 3. To choose its place, put it on a line of its own inside a block.\n";
const std::string dropped = "warning: The canonical layout drops this comment, as no step or block end "
                            "follows it on a later line. To keep it, put it on a line of its own inside a "
                            "block.\n";
const std::string head =
    "# by me\nquindle \"A\" {\non run { # why\nreport \"# {no} comment\" /* how\n\n */ }\n"
    "on load { }\n}\n";
const std::string headFormatted = "quindle \"A\" {\n    on run {\n        # by me\n        # why\n"
                                  "        report \"# {no} comment\"\n        # how\n    }\n\n"
                                  "    on load {\n    }\n}\n";
const std::string behind = "quindle \"A\" { on run {\nif a { } # is kept\n} # is not\n}\n// is neither\n";

std::string refusal(const std::string& count) {
  return "f: error: This file is left as it is, because " + count +
         " can't stay in place. Put what is to stay into a block, or write --drop-comments.\n";
}

TEST(Fmt, ChangesFilesOnlyAsAgreed) {
  const std::vector<Case> cases{
      {{}, untidy, 0, tidy, "", ""},
      {{"--check"}, untidy, 1, "f\n", "", ""},
      {{"--write"}, untidy, 0, "f\n", "", tidy},
      {{}, head, 0, headFormatted, moved, ""},
      {{"--write"}, head, 1, "", moved + refusal("1 comment"), ""},
      {{"--write", "--drop-comments"}, head, 0, "f\n", moved, headFormatted},
      {{"--write"}, behind, 1, "", "f:3: " + dropped + "f:5: " + dropped + refusal("2 comments"), ""},
      {{"--write"},
       "quindle \"A\" {\n on run { let a 3 } }",
       1,
       "",
       "f:2:17: error: Expected \"=\" but found the number 3.\n",
       ""},
      {{"--write", "--drop-comments"},
       untidy + "\n# one\nquindle \"B\" { }",
       1,
       "",
       "f:3: error: This stands behind the end of the Quindle, where nothing reads it. Remove it before "
       "formatting.\n",
       ""},
      {{"--write"},
       "quindle \"A\" { on run { call a.\"\" } }",
       1,
       "",
       "f: error: The canonical layout of this Quindle can't be read back: Expected the name of the action "
       "in quotes but found \"(\". It is left as it is; write that step in another way.\n",
       ""},
  };
  for (const Case& one : cases) {
    SCOPED_TRACE(testing::PrintToString(one.options) + " " + one.text);
    const TemporaryDirectory directory;
    const std::string path = directory.write("f", one.text);
    Words words{"fmt", "f"};
    words.insert(words.end(), one.options.begin(), one.options.end());
    const CommandResult result = quindle(words, {.directory = directory.path()});
    EXPECT_EQ(result.exitCode, one.exitCode);
    EXPECT_EQ(result.out, one.out);
    EXPECT_EQ(result.err, one.err);
    EXPECT_EQ(readFile(path), one.after.empty() ? one.text : one.after);
  }
}

TEST(Fmt, TouchesOnlyWhatChanges) {
  const TemporaryDirectory directory;
  const std::string staying = directory.write("staying", tidy);
  struct stat before {};
  struct stat after {};
  ::stat(staying.c_str(), &before);
  ASSERT_EQ(quindle({"fmt", "--write", staying}).exitCode, 0);
  ::stat(staying.c_str(), &after);
  EXPECT_EQ(after.st_ino, before.st_ino);
}

TEST(Fmt, RefusesIndentationThatGrowsBeyondAllBounds) {
  std::string deep = "quindle \"A\" { on run {";
  for (int i = 0; i < 9000; ++i) deep += "if a{";
  const CommandResult result = quindle({"fmt", "-"}, {.input = deep + std::string(9002, '}')});
  EXPECT_EQ(result.exitCode, 1);
  EXPECT_EQ(result.out, "");
  EXPECT_EQ(result.err,
            "<stdin>: error: Its blocks lie so deep inside one another that the indentation would "
            "take more than 268,435,456 bytes. Nest them less deeply.\n");
}

TEST(Fmt, GivesMachinesTheTextAndWhatWasDone) {
  const CommandResult result = quindle({"fmt", "--json", "-"}, {.input = untidy});
  EXPECT_EQ(nlohmann::json::parse(result.out, nullptr, false),
            (nlohmann::json{{"quindles",
                             {{{"file", "<stdin>"},
                               {"name", "A"},
                               {"ok", true},
                               {"changed", true},
                               {"written", false},
                               {"text", tidy}}}},
                            {"diagnostics", nlohmann::json::array()}}));
}

} // namespace
