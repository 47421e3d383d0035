#include "tests/cli/quindle.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

using namespace Zamt::Testing;

namespace {

const std::string faulty = "quindle \"Faulty\" {\n  on run {\n    let x 3\n    # nothing more\n  }\n}\n";
const std::string unplannable = "quindle \"Unplannable\" {\n  description \"d\"\n  on run {\n"
                                "    if true { select Ground } else { select Amplitude != 3 }\n"
                                "    run \"Unplannable\"()\n  }\n}\n";

TEST(Check, SaysWhereEachFaultIsAndWhyAFileCannotBeRead) {
  const TemporaryDirectory directory;
  directory.write("unplannable.quindle", unplannable);
  const CommandResult result =
      quindle({"check", "none.quindle", ".", "unplannable.quindle"}, {.directory = directory.path()});
  EXPECT_EQ(result.exitCode, 1);
  EXPECT_EQ(
      result.err,
      "none.quindle: error: This can't be opened: No such file or directory. Check the path.\n"
      ".: error: This can't be read: Is a directory. Name a file that holds a Quindle.\n"
      "unplannable.quindle:5: error: This Quindle runs itself, which would never stop.\n"
      "unplannable.quindle:4:22: error: \"Ground\" on its own is not a condition. Compare it with something, "
      "or call it as a condition.\n"
      "unplannable.quindle:4:45: error: A comparison with != cannot be turned into a range. Write not (... "
      "== ...) instead.\n");
}

TEST(Check, PassesWhatIsOnlyDoubtful) {
  const CommandResult result = quindle({"check", "-"}, {.input = "quindle \"a\" { }"});
  EXPECT_EQ(result.exitCode, 0);
  EXPECT_TRUE(result.err.starts_with("<stdin>: warning: This Quindle has no trigger")) << result.err;
}

TEST(Check, GivesMachinesTheSameAsJson) {
  const CommandResult result = quindle({"check", "--json", "-"}, {.input = faulty});
  EXPECT_EQ(result.exitCode, 1);
  EXPECT_EQ(result.err, "");
  const nlohmann::json expected = {
      {"quindles",
       {{{"file", "<stdin>"}, {"name", "Faulty"}, {"ok", false}, {"errors", 1}, {"warnings", 0}}}},
      {"diagnostics",
       {{{"severity", "error"},
         {"message", "Expected \"=\" but found the number 3."},
         {"file", "<stdin>"},
         {"line", 3},
         {"column", 11}}}}};
  EXPECT_EQ(nlohmann::json::parse(result.out, nullptr, false), expected);
}

TEST(Check, FindsNoFaultInTheExamples) {
  std::vector<std::string> words{"check"};
  for (const auto& entry : std::filesystem::directory_iterator(QUINDLE_SOURCE_DIR "/examples"))
    if (entry.path().extension() == ".quindle") words.push_back(entry.path().string());
  ASSERT_GE(words.size(), 7U);
  const CommandResult result = quindle(words);
  EXPECT_EQ(result.exitCode, 0);
  EXPECT_EQ(result.err, "");
}

} // namespace
