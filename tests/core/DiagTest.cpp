#include "quindle/core/Diag.h"

#include <gtest/gtest.h>

namespace Zamt {
namespace {

using Severity = Diag::Severity;

TEST(Diag, CountsErrorsNamesTheFirstAndAbsorbsAnotherAsOftenAsAskedButNeverItself) {
  Diag diag;
  EXPECT_EQ(diag.firstError() + diag.format(), "");
  diag.warning("w", "f");
  diag.error("first", "f");
  Diag other;
  other.at(Severity::Error, "second", "g", 1, 2);
  other.note("n");
  for (const Diag* absorbed : {&other, &other, &diag}) diag.absorb(*absorbed);
  EXPECT_EQ(diag.errorCount, 3U);
  EXPECT_EQ(diag.firstError(), "first");
  EXPECT_EQ(diag.format(), "f: warning: w\nf: error: first\ng:1:2: error: second\nnote: n\n"
                           "g:1:2: error: second\nnote: n");
  diag.clear();
  EXPECT_EQ(diag.errorCount, 0U);
  EXPECT_EQ(diag.format(), "");
}

} // namespace
} // namespace Zamt
