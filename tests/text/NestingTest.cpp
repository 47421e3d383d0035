#include "quindle/text/parseQuindle.h"

#include "tests/support/smallStack.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>

namespace Zamt {
namespace {

using Testing::onSmallStack;
using Testing::repeated;

constexpr std::size_t levels = 1'000'000;

/// What is printed of a document: every expression and value below it.
std::size_t printedBytes(const QuindleDocument& doc) {
  std::size_t bytes = 0;
  for (const QuindleParam& param : doc.params) bytes += param.defaultValue.toSource().size();
  for (const QuindleTrigger& trigger : doc.triggers)
    for (const QuindleStep& step : trigger.steps)
      bytes += step.condition.toSource().size() + step.value.toSource().size();
  return bytes;
}

struct Nesting {
  const char* name;
  std::string before;
  std::string opening; ///< repeated
  std::string middle;
  std::string closing; ///< repeated
  std::string after;
  std::size_t printed;  ///< bytes of all expressions printed
  const char* unclosed; ///< the message of each level without its closing, at the end of the file
  std::size_t repeats = levels;
};

class NestingTest : public testing::TestWithParam<Nesting> {};

TEST_P(NestingTest, ReadsCopiesPrintsAndDestroys) {
  const Nesting& nesting = GetParam();
  onSmallStack([&] {
    auto doc = std::make_unique<QuindleDocument>();
    Diag diag;
    const std::string text = nesting.before + repeated(nesting.opening, nesting.repeats) + nesting.middle +
                             repeated(nesting.closing, nesting.repeats) + nesting.after;
    EXPECT_TRUE(parseQuindle(text, "f", *doc, diag)) << diag.firstError();
    auto copy = std::make_unique<QuindleDocument>(*doc);
    doc.reset();
    EXPECT_EQ(printedBytes(*copy), nesting.printed);
  });
}

TEST_P(NestingTest, ReportsEveryUnclosedLevel) {
  const Nesting& nesting = GetParam();
  if (!nesting.unclosed) GTEST_SKIP() << "It has nothing to close.";
  onSmallStack([&] {
    QuindleDocument doc;
    Diag diag;
    EXPECT_FALSE(parseQuindle(nesting.before + repeated(nesting.opening, nesting.repeats) + nesting.middle,
                              "f", doc, diag));
    std::size_t reported = 0;
    for (const Diag::Entry& entry : diag.entries) reported += entry.message == nesting.unclosed ? 1 : 0;
    EXPECT_GE(reported, levels);
    EXPECT_LE(reported, levels + 2);
  });
}

const std::string select = "quindle \"a\" { on run { select ";
const std::string param = "quindle \"a\" { on run { } param p : T = ";
const char* const noBracket = "Expected \")\" but found the end of the file.";
const char* const noBrace = "Expected \"}\" but found the end of the file.";

INSTANTIATE_TEST_SUITE_P(
    AMillion, NestingTest,
    testing::Values(
        Nesting{"Parentheses", select, "(", "a", ")", "} }", 1, noBracket},
        Nesting{"Negations", select, "not ", "a", "", "} }", 4 * levels + 1, nullptr},
        Nesting{"Calls", select, "f(", "a", ")", "} }", 3 * levels + 1, noBracket},
        Nesting{"AndsAndOrs", select, "a and (b or (", "c", "))", "} }", 13 * levels / 2 + 1, noBracket,
                levels / 2},
        Nesting{"LeftComparisons", select, "(", "a", " < b)", "} }", 6 * levels - 1, noBracket},
        Nesting{"NegatedParentheses", select, "not (", "a", ")", "} }", 4 * levels + 1, noBracket},
        Nesting{"Tuples", param, "(", "1", ")", "}", 2 * levels + 1, noBracket},
        Nesting{"MinusSigns", param, "-", "1", "", "}", levels + 1, nullptr},
        Nesting{"Ifs", "quindle \"a\" { on run { ", "if a { ", "", "}", "} }", 1, noBrace},
        Nesting{"Elses", "quindle \"a\" { on run { ", "if a { } else { ", "", "}", "} }", 1, noBrace},
        Nesting{"Loops", "quindle \"a\" { on run { ", "for each i in a { ", "", "}", "} }", 1, noBrace}),
    [](const testing::TestParamInfo<Nesting>& nesting) { return nesting.param.name; });

TEST(Nesting, ReportsEveryMinusSignInFrontOfWhatIsNoNumber) {
  QuindleDocument doc;
  Diag diag;
  EXPECT_FALSE(parseQuindle(param + repeated("-", levels) + "x }", "f", doc, diag));
  EXPECT_EQ(diag.errorCount, levels);
  EXPECT_EQ(diag.entries.back().format(), "f:1:1000042: error: Only a number can be negated here.");
}

TEST(Nesting, TakesManyParametersAndCommentsInLinearTime) {
  QuindleDocument doc;
  Diag diag;
  std::string text = "quindle \"a\" {\n";
  for (std::size_t i = 0; i < levels / 10; ++i) text += "param p" + std::to_string(i) + " : T # c\n";
  EXPECT_TRUE(parseQuindle(text + "param p0x : T on run { } }", "f", doc, diag)) << diag.firstError();
  EXPECT_EQ(doc.params.size(), levels / 10 + 1);
}

} // namespace
} // namespace Zamt
