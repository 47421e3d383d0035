#include "tests/cli/quindle.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

using namespace Zamt::Testing;

namespace {

const std::string faulty = "quindle \"Faulty\" {\n"
                           "  on run {\n"
                           "    let x 3\n"
                           "    # nothing more\n"
                           "  }\n"
                           "}\n";
const std::string unplannable = "quindle \"Unplannable\" {\n"
                                "  description \"d\"\n"
                                "  on run {\n"
                                "    if true { select Ground } else { select Amplitude != 3 }\n"
                                "    select frob(1)\n"
                                "    run \"Unplannable\"()\n"
                                "  }\n"
                                "}\n";

TEST(Check, SaysWhereEachFaultIs) {
  const TemporaryDirectory directory;
  directory.write("faulty.quindle", faulty);
  directory.write("unplannable.quindle", unplannable);
  const CommandResult result =
      quindle({"check", "faulty.quindle", "unplannable.quindle"}, {.directory = directory.path()});
  EXPECT_EQ(result.exitCode, 1);
  EXPECT_EQ(
      result.err,
      "faulty.quindle:3:11: error: Expected \"=\" but found the number 3.\n"
      "unplannable.quindle:6: error: This Quindle runs itself, which would never stop.\n"
      "unplannable.quindle:4:22: error: \"Ground\" on its own is not a condition. Compare it with something, "
      "or call it as a condition.\n"
      "unplannable.quindle:4:45: error: A comparison with != cannot be turned into a range. Write not (... "
      "== "
      "...) instead.\n"
      "unplannable.quindle:5:12: error: There is no condition called \"frob\". The ones there are: class, "
      "field, below, above, vertical, neighbours, inside, within, expr.\n");
  EXPECT_EQ(result.out, "faulty.quindle: 1 error, 0 warnings\n"
                        "unplannable.quindle: 4 errors, 0 warnings\n");
}

TEST(Check, ReadsStandardInputAndPassesWhatIsOnlyDoubtful) {
  const CommandResult result = quindle({"check", "-"}, {.input = "quindle \"a\" { }"});
  EXPECT_EQ(result.exitCode, 0);
  EXPECT_EQ(result.err,
            "<stdin>: warning: This Quindle has no trigger, so nothing will ever run it. Add an \"on run "
            "{ ... }\" block.\n"
            "<stdin>: warning: This Quindle has no description. That text is what the library, the block "
            "palette and the AI use to tell the user what it does.\n"
            "<stdin>: warning: This Quindle has no trigger, so nothing will ever run it.\n");
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

TEST(Check, SaysWhyAFileCannotBeRead) {
  const TemporaryDirectory directory;
  const CommandResult result = quindle({"check", "none.quindle", "."}, {.directory = directory.path()});
  EXPECT_EQ(result.exitCode, 1);
  EXPECT_EQ(result.err,
            "none.quindle: error: This can't be opened: No such file or directory. Check the path.\n"
            ".: error: This can't be read: Is a directory. Name a file that holds a Quindle.\n");
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
