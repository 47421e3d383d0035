#include "quindle/text/QuindleSpans.h"
#include "quindle/text/parseQuindle.h"
#include "quindle/text/writeQuindle.h"
#include "tests/support/smallStack.h"

namespace Zamt {
namespace {

using Testing::onSmallStack;
using Testing::repeated;

/// On a tiny stack, which has little more than a byte a level.
constexpr std::size_t levels = 100'000;

/// A document that is nested as deep as its text repeats an opening.
struct Nesting {
  const char* before;
  const char* opening; ///< repeated
  const char* middle;
  const char* closing;   ///< repeated
  std::size_t written;   ///< The bytes of the layout; 0 for blocks, whose indents would grow beyond bounds.
  std::size_t spans;     ///< Of its text.
  std::size_t depth = 1; ///< Levels that an opening makes.
};

const char* const select = "quindle \"a\" { on run { select ";
const char* const run = "quindle \"a\" { on run { ";
const char* const param = "quindle \"a\" { on run { } param p : T = ";

void expectReadCopiedAndWritten(const Nesting& nesting) {
  const std::size_t times = levels / nesting.depth;
  const std::string text = nesting.before + repeated(nesting.opening, times) + nesting.middle +
                           repeated(nesting.closing, times) + " } }";
  QuindleDocument doc;
  Diag diag;
  EXPECT_TRUE(parseQuindle(text, "f", doc, diag)) << diag.firstError();
  const QuindleDocument copy = doc;
  doc = QuindleDocument();
  if (nesting.written > 0) {
    EXPECT_EQ(writeQuindle(copy).size(), nesting.written);
  }
  EXPECT_EQ(quindleSpans(text).size(), nesting.spans);
}

TEST(Nesting, OfAnyDepthIsReadCopiedWrittenAndDestroyed) {
  constexpr std::size_t selectBytes = 51; // of the layout around a condition
  constexpr std::size_t selectSpans = 9;  // of the text around it
  constexpr std::size_t paramBytes = 55;
  constexpr std::size_t paramSpans = 14;
  const Nesting cases[] = {
      {select, "(", "a", ")", selectBytes + 1, selectSpans + 2 * levels + 1},
      {select, "not ", "a", "", selectBytes + 4 * levels + 1, selectSpans + levels + 1},
      {select, "f(", "a", ")", selectBytes + 3 * levels + 1, selectSpans + 4 * levels + 1},
      {select, "a and (b or (", "c", "))", selectBytes + 13 * levels / 2 + 1, selectSpans + 4 * levels + 1,
       2},
      {select, "(", "a", " < b)", selectBytes + 6 * levels - 1, selectSpans + 4 * levels + 1},
      {param, "(", "1", ")", paramBytes + 2 * levels + 1, paramSpans + 2 * levels + 1},
      {param, "-", "1", "", paramBytes + levels + 1, paramSpans + levels + 1},
      {run, "if a { ", "", "}", 0, 8 + 4 * levels},
      {run, "if a { } else { ", "", "}", 0, 8 + 7 * levels},
      {run, "for each i in a { ", "", "}", 0, 8 + 7 * levels},
  };
  for (const Nesting& nesting : cases) {
    SCOPED_TRACE(nesting.before + std::string(nesting.opening));
    onSmallStack([&] { expectReadCopiedAndWritten(nesting); }, Testing::tinyStackBytes);
  }
}

TEST(Nesting, ReportsEveryUnclosedLevel) {
  const std::pair<const char*, const char*> cases[] = {{select, "f("}, {param, "("}, {run, "if a { "}};
  for (const auto& [before, opening] : cases)
    onSmallStack(
        [&before = before, &opening = opening] {
          QuindleDocument doc;
          Diag diag;
          EXPECT_FALSE(parseQuindle(before + repeated(opening, levels), "f", doc, diag));
          EXPECT_GE(diag.errorCount, levels);
          EXPECT_LE(diag.errorCount, levels + 3);
          EXPECT_TRUE(diag.entries[levels / 2].message.ends_with(" but found the end of the file."));
        },
        Testing::tinyStackBytes);
}

TEST(Nesting, ReportsEveryMinusSignInFrontOfWhatIsNoNumber) {
  QuindleDocument doc;
  Diag diag;
  EXPECT_FALSE(parseQuindle(param + repeated("-", levels) + "x }", "f", doc, diag));
  EXPECT_EQ(diag.errorCount, levels);
  EXPECT_EQ(diag.entries.back().format(), "f:1:100042: error: Only a number can be negated here.");
}

TEST(Nesting, TakesManyParametersAndCommentsInLinearTime) {
  QuindleDocument doc;
  Diag diag;
  std::string text = "quindle \"a\" {\n";
  for (std::size_t i = 0; i < levels; ++i) text += "param p" + std::to_string(i) + " : T # c\n";
  EXPECT_TRUE(parseQuindle(text + "param p0x : T on run { } }", "f", doc, diag)) << diag.firstError();
  EXPECT_EQ(doc.params.size(), levels + 1);
}

} // namespace
} // namespace Zamt
