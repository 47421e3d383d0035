#include "tests/cli/quindle.h"

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

using namespace Zamt::Testing;

namespace {

const std::string faulty = "quindle \"Faulty\" {\n  on run {\n    let x 3\n    # nothing more\n  }\n}\n";

TEST(Check, SaysWhereEachFaultIsAndPassesWhatIsOnlyDoubtful) {
  const TemporaryDirectory directory;
  directory.write("faulty.quindle", faulty);
  directory.write("plan.quindle", "quindle \"Unplannable\" {\n  on run {\n"
                                  "    if true { select Ground } else { select Amplitude != 3 }\n  }\n}\n");
  const CommandResult result = quindle({"check", "faulty.quindle", "plan.quindle", "none.quindle", ".", "-"},
                                       {.directory = directory.path(), .input = "quindle \"a\" { }"});
  EXPECT_EQ(result.exitCode, 1);
  EXPECT_EQ(result.err,
            "faulty.quindle:3:11: error: Expected \"=\" but found the number 3.\n"
            "plan.quindle:3:22: error: \"Ground\" on its own is not a condition. Compare it with something, "
            "or call it as a condition.\n"
            "plan.quindle:3:45: error: A comparison with != cannot be turned into a range. Write not (... == "
            "...) instead.\n"
            "none.quindle: error: This can't be opened: No such file or directory. Check the path.\n"
            ".: error: This can't be read: Is a directory. Name a file that holds a Quindle.\n"
            "<stdin>: warning: This Quindle has no trigger, so nothing will ever run it. Add an \"on run { "
            "... }\" block.\n");
  EXPECT_THAT(result.out, testing::HasSubstr("faulty.quindle: 1 error, 0 warnings\n"
                                             "plan.quindle: 2 errors, 0 warnings\n"));
  EXPECT_EQ(quindle({"check", "-"}, {.input = "quindle \"a\" { }"}).exitCode, 0);
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
