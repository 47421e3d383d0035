#include "quindle/check/checkQuindle.h"

#include "tests/support/goldenCases.h"
#include "tests/support/parsed.h"
#include "tests/support/smallStack.h"

#include <gtest/gtest.h>

namespace Zamt {
namespace {

using Testing::parsed;
using Testing::repeated;

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
