#include "tests/runtime/RuntimeTest.h"

namespace Zamt::Testing {
namespace {

using ExpandReportTest = RuntimeTest;

TEST_F(ExpandReportTest, FillsInWhatItKnowsAndLeavesTheRestAsWritten) {
  struct Case {
    std::string text;
    std::string line;
    std::string diag;
    std::string counter = "Editor";
    bool preview = false;
  };
  const auto unknown = [](const std::string& name) {
    return "Test: warning: The report mentions \"{" + name + "}\", which is not a parameter of this Quindle.";
  };
  const auto uncounted = [](const std::string& count) {
    return "Test: warning: The editor did not report a count, so \"{" + count +
           "}\" is left unfilled in the report.";
  };
  const Case cases[] = {
      {"{selected} of {total}", "0 of 7", ""},
      {"{selected}{total}", "{selected}{total}", uncounted("selected") + "\n" + uncounted("total"), "Mute"},
      {"{total}", "{total}",
       "Test: warning: This preview never got as far as counting anything, so \"{total}\" is left unfilled.",
       "", true},
      {"{number} {colour} {word}", "1.50 (1, 2) one", ""},
      {"{number}{given}", "1.50", ""},
      {"{shadow} {let}", "from let a \"b\"", ""},
      {"{}{ number}{unset}", "{}{ number}{unset}",
       unknown("") + "\n" + unknown(" number") + "\n" + unknown("unset")},
      {"100% } {number} {number", "100% } 1.50 {number", ""},
      {"{a{b}}", "{a{b}}", unknown("a{b")}};
  const QuindleDocument doc =
      parsedRun("", "param number : Number = 1.50 param colour : Text = (1, 2) param word : Text = one param "
                    "given : Text = \"default\" param shadow : Text = x param unset : Text");
  const std::map<std::string, QuindleValue> lets = {{"shadow", QuindleValue::text("from let")},
                                                    {"let", QuindleValue::text("a \"b\"")}};
  scene.add("Editor", "Edit/MaskedLabels").slots = {{"modified", "0"}, {"considered", "7"}};
  scene.add("Mute", "Edit/MaskedLabels").slots = {{"modified", ""}};
  for (const Case& one : cases) {
    Diag found;
    EXPECT_EQ(runtime.expandReport(one.text, doc, {{"given", ""}}, lets, one.counter, one.preview, found),
              one.line);
    EXPECT_EQ(found.format(), one.diag) << one.text;
  }
}

TEST_F(ExpandReportTest, LetsAParameterHideACountOnlyWhenItHasAValue) {
  const QuindleDocument doc = parsedRun("", "param selected : Text = mine param total : Text");
  scene.add("Editor", "Edit/MaskedLabels").slots = {{"considered", "7"}};
  EXPECT_EQ(runtime.expandReport("{selected} {total}", doc, {}, {}, "Editor", false, diag), "mine 7");
}

} // namespace
} // namespace Zamt::Testing
