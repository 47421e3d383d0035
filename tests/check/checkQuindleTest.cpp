#include "quindle/check/checkQuindle.h"

#include "tests/support/goldenCases.h"
#include "tests/support/parsed.h"
#include "tests/support/smallStack.h"

#include <gtest/gtest.h>

namespace Zamt {
namespace {

using Testing::onSmallStack;
using Testing::parsed;
using Testing::parsedRun;
using Testing::repeated;

constexpr std::size_t many = 1'000'000;

/// All findings, a line each; what was said before decides nothing.
std::string findingsOn(const QuindleDocument& doc) {
  Diag diag;
  diag.error("before");
  const bool passed = checkQuindle(doc, diag);
  EXPECT_EQ(passed, diag.errorCount == 1);
  diag.entries.erase(diag.entries.begin());
  return diag.format();
}

TEST(CheckQuindle, FindsWhatTheGoldenDocumentSays) {
  Testing::expectCases("check/golden/findings.md",
                       [](const std::string& text) { return findingsOn(parsed(text)); });
}

TEST(CheckQuindle, NamesTheDocumentWhereThereIsNoFile) {
  EXPECT_EQ(findingsOn(parsed("quindle \"a\" { on run { } }", "")),
            "a: warning: This Quindle has no description. That text is what the library, the block palette "
            "and the AI use to tell the user what it does.\na:1: warning: This trigger does nothing.");
}

TEST(CheckQuindle, GoesThroughAMillionLevelsOfBlocksAndExpressions) {
  onSmallStack([&] {
    const std::string opening = "if a { for each x in b { ";
    const QuindleDocument doc =
        parsedRun(repeated(opening, many / 2) + "classify into c" + repeated("} }", many / 2) + " report \"" +
                      repeated("{", many) + "}\" let d = " + repeated("f(", many) + "p" + repeated(")", many),
                  "description \"d\" param p : Text \"h\"");
    Diag diag;
    EXPECT_TRUE(checkQuindle(doc, diag));
    // Each loop but the outermost hides the one around it; the class is changed without a selection.
    EXPECT_EQ(diag.entries.size(), many / 2);
    EXPECT_EQ(diag.entries.back().message,
              "This changes the data before anything has been selected, so it applies to every point. Add a "
              "\"select\" first if that is not what you meant.");
  });
}

TEST(CheckQuindle, TakesManyNamesInReachAtManyBlocksAndTriggers) {
  constexpr std::size_t names = 100'000;
  std::string lets;
  std::string params;
  for (std::size_t i = 0; i < names; ++i) {
    lets += "let n" + std::to_string(i) + " = 1 if a { let b = 1 }\n";
    params += "param p" + std::to_string(i) + " : Text \"h\"\n";
  }
  const QuindleDocument doc = parsed("quindle \"a\" { description \"d\"\n" + params + "on load {" + lets +
                                     "}\n" + repeated("on load { let b = 1 }\n", names) + '}');
  Diag diag;
  EXPECT_TRUE(checkQuindle(doc, diag));
  EXPECT_EQ(diag.entries.size(), names);
}

} // namespace
} // namespace Zamt
