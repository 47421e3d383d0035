#include "quindle/text/parseQuindle.h"

#include "tests/support/smallStack.h"

namespace Zamt {
namespace {

using Testing::onSmallStack;
using Testing::repeated;

constexpr std::size_t levels = 1'000'000;

/// The bytes of every expression and value of a document.
std::size_t printedBytes(const QuindleDocument& doc) {
  std::size_t bytes = 0;
  for (const QuindleParam& param : doc.params) bytes += param.defaultValue.toSource().size();
  for (const QuindleTrigger& trigger : doc.triggers)
    for (const QuindleStep& step : trigger.steps) bytes += step.condition.toSource().size();
  return bytes;
}

struct Nesting {
  const char* before;
  const char* opening; ///< repeated
  const char* middle;
  const char* closing;   ///< repeated
  std::size_t printed;   ///< bytes of a million levels
  std::size_t depth = 1; ///< levels that an opening makes

  std::string text(std::size_t times) const {
    return before + repeated(opening, times / depth) + middle + repeated(closing, times / depth) + " } }";
  }
};

const char* const select = "quindle \"a\" { on run { select ";
const char* const run = "quindle \"a\" { on run { ";
const char* const param = "quindle \"a\" { on run { } param p : T = ";

TEST(Nesting, OfAMillionLevelsIsReadPrintedCopiedAndDestroyed) {
  const Nesting cases[] = {{select, "(", "a", ")", 1},
                           {select, "not ", "a", "", 4 * levels + 1},
                           {select, "f(", "a", ")", 3 * levels + 1},
                           {select, "a and (b or (", "c", "))", 13 * levels / 2 + 1, 2},
                           {select, "(", "a", " < b)", 6 * levels - 1},
                           {param, "(", "1", ")", 2 * levels + 1},
                           {param, "-", "1", "", levels + 1},
                           {run, "if a { ", "", "}", 1},
                           {run, "if a { } else { ", "", "}", 1},
                           {run, "for each i in a { ", "", "}", 0}};
  for (const Nesting& nesting : cases)
    onSmallStack([&] {
      QuindleDocument doc;
      Diag diag;
      EXPECT_TRUE(parseQuindle(nesting.text(levels), "f", doc, diag)) << diag.firstError();
      const QuindleDocument copy = doc;
      doc = QuindleDocument();
      EXPECT_EQ(printedBytes(copy), nesting.printed) << nesting.opening;
    });
}

TEST(Nesting, ReportsEveryUnclosedLevel) {
  const std::pair<const char*, const char*> cases[] = {{select, "f("}, {param, "("}, {run, "if a { "}};
  for (const auto& [before, opening] : cases)
    onSmallStack([&before = before, &opening = opening] {
      QuindleDocument doc;
      Diag diag;
      EXPECT_FALSE(parseQuindle(before + repeated(opening, levels), "f", doc, diag));
      EXPECT_GE(diag.errorCount, levels);
      EXPECT_LE(diag.errorCount, levels + 3);
      EXPECT_TRUE(diag.entries[levels / 2].message.ends_with(" but found the end of the file."));
    });
}

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
