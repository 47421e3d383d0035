#include "tests/cli/quindle.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

using namespace Zamt::Testing;

namespace {

const std::string ordered = "quindle \"Ordered\" {\n  param tile : Region\n  on run {\n"
                            "    select class(\"Ground\") and (neighbours(0.5) < 3 or inside(tile))\n"
                            "      and not (Amplitude > 120)\n  }\n}\n";

TEST(Plan, GivesMachinesAFlatListWithDepths) {
  const CommandResult result = quindle({"plan", "--json", "-"}, {.input = ordered});
  ASSERT_EQ(result.exitCode, 0);
  const nlohmann::json plan = nlohmann::json::parse(result.out, nullptr, false);
  ASSERT_EQ(plan["selects"][0]["nodes"].size(), 6U);
  EXPECT_EQ(plan["selects"][0]["nodes"][4], (nlohmann::json{{"depth", 2},
                                                            {"kind", "condition"},
                                                            {"text", "neighbours(0.5, 0, 2)"},
                                                            {"cost", 10000},
                                                            {"costWord", "expensive"},
                                                            {"line", 4}}));
  EXPECT_EQ(plan["diagnostics"], nlohmann::json::array());
}

TEST(Plan, ShowsAPlanOfAnyDepth) {
  const TemporaryDirectory directory;
  std::string text = "quindle \"Deep\" { on run { select ";
  for (int i = 0; i < 100000; ++i) text += "a < 1 and (a < 1 or (";
  const std::string deep =
      directory.write("deep.quindle", text + "a < 1" + std::string(200000, ')') + " } }");
  for (const std::vector<std::string>& words :
       {{"plan", deep}, std::vector<std::string>{"plan", "--json", deep}})
    EXPECT_GT(quindle(words).out.size(), 200000U);
}

} // namespace
