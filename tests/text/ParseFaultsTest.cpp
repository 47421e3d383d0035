#include "quindle/text/parseQuindle.h"

#include "tests/support/dumpDocument.h"
#include "tests/support/goldenCases.h"

#include <algorithm>

namespace Zamt {
namespace {

struct Reading {
  QuindleDocument doc;
  Diag diag;
  bool usable;

  explicit Reading(const std::string& text) : usable(parseQuindle(text, "f", doc, diag)) {}
};

std::string faultsIn(const std::string& text) {
  const Reading reading(text);
  EXPECT_EQ(reading.usable, reading.diag.errorCount == 0);
  return reading.diag.format();
}

TEST(ParseFaults, AreToldAsInTheGoldenDocument) { Testing::expectCases("text/golden/faults.md", faultsIn); }

TEST(ParseFaults, StandAtTheirByteEvenInBrokenCharacters) {
  EXPECT_EQ(faultsIn("quindle \"a\" { on run {\nreport \"\xc3\xa4\" \xc3\n} }"),
            "f:2:13: error: Expected a step but found \"\xc3\".");
}

TEST(ParseFaults, NameEveryParameterThatIsThereTwice) {
  std::string params;
  std::string faults;
  for (int line = 1; line <= 40; ++line) params += "param p" + std::to_string(line) + " : T\n";
  for (const int twice : {1, 32, 33, 34, 40}) {
    params += "param p" + std::to_string(twice) + " : T\n";
    faults += "f:" + std::to_string(std::count(params.begin(), params.end(), '\n')) +
              ": error: There is already a parameter called \"p" + std::to_string(twice) + "\".\n";
  }
  const Reading reading("quindle \"a\" { " + params + "on run { } }");
  EXPECT_EQ(reading.diag.format() + '\n', faults);
  EXPECT_EQ(reading.doc.params.size(), 40U);
}

TEST(ParseFaults, AnEarlierErrorMakesTheResultFalse) {
  QuindleDocument doc;
  Diag diag;
  diag.error("before");
  EXPECT_FALSE(parseQuindle("quindle \"a\" { on run { } }", "f", doc, diag));
  EXPECT_EQ(diag.format(), "error: before");
}

TEST(ParseFaults, LeaveInTheDocumentWhatCouldBeRead) {
  const Reading reading(
      "quindle \"a\" { category \"c\" category 5\n"
      "param p : Number [1 2]\nparam q : Number = -x param q : Text param r : Number [1 .. 2 \"h\" 5\n"
      "on key { let = 1\nlet y 2\nset a 1\n  select\n  if b { connect c <- 3 }\n}\n"
      "on load { report \"kept\" }\non run { select x");
  EXPECT_FALSE(reading.usable);
  EXPECT_EQ(Testing::dumpDocument(reading.doc), "quindle <a> from <f>\n"
                                                "param@3:0 q : Number = Written Identifier x [None .. None]\n"
                                                "on@4:0 Key\n"
                                                "Let@4:10 value=[Literal@4:16 Number 1]\n"
                                                "If@8:3 condition=[Reference@8:6 b]\n"
                                                "  Connect@8:10 name=c\n"
                                                "on@10:0 Load\n"
                                                "Report@10:11 value=[Literal@10:11 Text \"kept\"]\n");
}

} // namespace
} // namespace Zamt
