#include "tests/support/dumpDocument.h"
#include "tests/support/goldenCases.h"

#include "quindle/text/parseQuindle.h"

namespace Zamt {
namespace {

TEST(ParseDocument, ReadsWhatTheGoldenDocumentShows) {
  Testing::expectCases("text/golden/read.md", [](const std::string& text) {
    QuindleDocument doc;
    Diag diag;
    EXPECT_EQ(parseQuindle(text, "f", doc, diag), diag.errorCount == 0);
    return Testing::dumpDocument(doc) + diag.format();
  });
}

TEST(ParseDocument, KeepsAPrivateCopyOfItsSource) {
  QuindleDocument doc;
  doc.name = "quindle \"a much longer name than that\" { on run { report \"done\" } }";
  Diag diag;
  EXPECT_TRUE(parseQuindle(doc.name, doc.name, doc, diag)) << diag.format();
  EXPECT_EQ(doc.name, "a much longer name than that");
}

} // namespace
} // namespace Zamt
