/// Texts held against files in golden/, byte for byte: the explanation of each Quindle in examples/ and
/// quindles/, and the pages of all conditions. After a change that is meant, this writes the files anew; look
/// at the difference before committing it:
///
///   QUINDLE_REFRESH_GOLDEN=1 build/dev/bin/tests-reference --gtest_filter='Golden.*'
#include "quindle/library/QuindleLibrary.h"
#include "quindle/plan/QuindleOperation.h"
#include "quindle/reference/explainQuindle.h"
#include "tests/support/goldenCases.h"

namespace Zamt::Testing {
namespace {

TEST(Golden, QuindlesAreExplainedInTheseWords) {
  for (const char* directory : {"/examples", "/tests/reference/quindles"}) {
    QuindleLibrary library;
    Diag diag;
    library.scan(QUINDLE_SOURCE_DIR + std::string(directory), diag);
    EXPECT_EQ(diag.format(), "");
    for (const QuindleLibraryEntry* const entry : library.search({}))
      expectGolden("reference/golden/" + std::filesystem::path(entry->path).stem().string() + ".txt",
                   explainQuindle(entry->document, library.resolver()));
  }
}

TEST(Golden, ConditionsAreDescribedInTheseWords) {
  std::string pages = listQuindleOperations("");
  for (const QuindleOperation& operation : allQuindleOperations())
    pages += "\n== \n" + describeQuindleOperation(operation.name);
  expectGolden("reference/golden/condition-pages.txt", pages);
  EXPECT_EQ(describeQuindleOperation("nothing"), "");
  EXPECT_EQ(listQuindleOperations("Selection/"), listQuindleOperations(""));
  EXPECT_EQ(listQuindleOperations("Selection/BrushFilterByT"),
            "below(surface, [margin])  -  Keep the points under a triangulated surface.\n"
            "above(surface, [margin])  -  Keep the points over a triangulated surface.\n");
}

} // namespace
} // namespace Zamt::Testing
