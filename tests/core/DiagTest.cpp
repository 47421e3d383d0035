#include "quindle/core/Diag.h"

#include <gtest/gtest.h>

namespace Zamt {
namespace {

using Severity = Diag::Severity;

TEST(Diag, EntryShowsOnlyThePartsOfAPositionThatAreThere) {
  struct Case {
    Diag::Entry entry;
    const char* text;
  };
  const Case cases[] = {
      {{Severity::Warning, "m", "a", 3, 7}, "a:3:7: warning: m"},
      {{Severity::Warning, "m", "a", 3, 0}, "a:3: warning: m"},
      {{Severity::Warning, "m", "a", 0, 7}, "a: warning: m"},
      {{Severity::Warning, "m", "a", -3, 7}, "a: warning: m"},
      {{Severity::Note, "m", "a", 3, -7}, "a:3: note: m"},
      {{Severity::Error, "m", "", 3, 7}, ":3:7: error: m"},
      {{Severity::Note, "m", "", 0, 0}, "note: m"},
      {{static_cast<Severity>(9), "m", "", 0, 0}, "error: m"},
  };
  for (const Case& c : cases) EXPECT_EQ(c.entry.format(), c.text);
}

TEST(Diag, CountsErrorsAndNamesTheFirst) {
  Diag diag;
  EXPECT_EQ(diag.firstError(), "");
  EXPECT_EQ(diag.format(), "");
  diag.warning("w", "f");
  diag.note("n");
  diag.error("first", "f");
  diag.at(Severity::Error, "second", "f", 1, 2);
  EXPECT_EQ(diag.errorCount, 2U);
  EXPECT_EQ(diag.firstError(), "first");
  EXPECT_EQ(diag.format(), "f: warning: w\nnote: n\nf: error: first\nf:1:2: error: second");
  diag.clear();
  EXPECT_EQ(diag.errorCount, 0U);
  EXPECT_EQ(diag.format(), "");
}

TEST(Diag, AbsorbsAnotherAsOftenAsAskedButNeverItself) {
  Diag one;
  one.error("a");
  Diag two;
  two.error("b");
  two.warning("c");
  one.absorb(two);
  one.absorb(two);
  one.absorb(one);
  EXPECT_EQ(one.format(), "error: a\nerror: b\nwarning: c\nerror: b\nwarning: c");
  EXPECT_EQ(one.errorCount, 3U);
  EXPECT_EQ(two.entries.size(), 2U);
}

} // namespace
} // namespace Zamt
