#include "quindle/text/formatQuindle.h"

#include "tests/support/smallStack.h"
#include "tests/text/randomText.h"

#include <gtest/gtest.h>

namespace Zamt {
namespace {

struct Formatting {
  QuindleDocument doc;
  std::string text = "left over";
  std::vector<QuindleStrayComment> strays{{1, 1}};
  Diag diag;
  bool good;

  explicit Formatting(const std::string& source)
      : good(formatQuindle(source, "f", doc, text, strays, diag)) {}
};

/// The steps in the layout of a file with one trigger.
std::string laidOut(const std::string& steps) {
  return "quindle \"A\" {\n    on run {\n" + steps + "    }\n}\n";
}

TEST(FormatQuindle, KeepsCommentsWhereTheyStandOrSaysWhatBecomesOfThem) {
  const std::string kept = laidOut("        report \"x\"\n        # c\n");
  const std::string twoTriggers =
      "quindle \"A\" {\n    on run {\n    }\n\n    on load {\n        # c\n    }\n}\n";
  struct Case {
    const char* text;
    std::string formatted;
    std::string strays; ///< the line of each, and ">" with that of the trigger it is moved to
  };
  const Case cases[] = {
      {"quindle \"A\" { on run { report \"x\" # c\n} }", kept, ""},
      {"quindle \"A\" { on run { /* c */\nreport \"x\" } }", laidOut("        # c\n        report \"x\"\n"),
       ""},
      {"# c\nquindle \"A\" {\non run {\nreport \"x\" } }", laidOut("        # c\n        report \"x\"\n"),
       "1>3 "},
      {"quindle \"A\" { on run # c\n {\n } }", laidOut("        # c\n"), "1>1 "},
      {"quindle \"A\" { on run { } # c\non load {\n} }", twoTriggers, "1>2 "},
      {"quindle \"A\" { on run { /* c */ }\non load {\n} }", twoTriggers, "1>2 "},
      {"/* c */ quindle \"A\" { on run { /* d */ } on load {\n} }",
       "quindle \"A\" {\n    on run {\n    }\n\n    on load {\n        # c\n        # d\n    }\n}\n",
       "1>1 1>1 "},
      {"quindle \"A\" { on run {\nif a { } # c\n} # d\n}\n// e",
       laidOut("        if a {\n        }\n        # c\n"), "3 5 "},
      {"# a\nquindle \"A\" { } # b", "quindle \"A\" {\n}\n", "1 2 "},
      {"#\n/* \t\r\n */ quindle \"A\" { on run { // \n} } #   ", laidOut(""), ""},
      {"quindle \"A\" { on run { /* a\n\nb */\n} }", laidOut("        # a\n        # b\n"), ""},
  };
  for (const auto& [text, formatted, strays] : cases) {
    SCOPED_TRACE(text);
    const Formatting result(text);
    EXPECT_TRUE(result.good);
    EXPECT_EQ(result.text, formatted);
    std::string found;
    for (const QuindleStrayComment& stray : result.strays)
      found += std::to_string(stray.line) + (stray.movedTo ? '>' + std::to_string(stray.movedTo) : "") + ' ';
    EXPECT_EQ(found, strays);
  }
}

TEST(FormatQuindle, WarnsOfWhatItMovesAndDropsAndSaysWhatItCannotFormat) {
  std::string deep = "quindle \"A\" { on run {";
  constexpr std::size_t tooDeep = 9000;
  const std::pair<std::string, const char*> cases[] = {
      {"# a\nquindle \"A\" {\non run {\n} # b\n}",
       "f:1: warning: The canonical layout moves this comment to the start of the block of line 3. To choose "
       "its place, put it on a line of its own inside a block.\n"
       "f:4: warning: The canonical layout drops this comment, as no step or block end follows it on a later "
       "line. To keep it, put it on a line of its own inside a block."},
      {"quindle \"A\" { on run { let a 3 } }", "f:1:30: error: Expected \"=\" but found the number 3."},
      {"# a\nquindle \"A\" { on run { } } # b\n\n x",
       "f:4: error: This stands behind the end of the Quindle, where nothing reads it. Remove it before "
       "formatting."},
      {"quindle \"A\" { on run { call a.\"\" } }",
       "f: error: The canonical layout of this Quindle can't be read back: Expected the name of the action "
       "in "
       "quotes but found \"(\". It is left as it is; write that step in another way."},
      {deep + Testing::repeated("if a{", tooDeep) + std::string(tooDeep + 2, '}'),
       "f: error: Its blocks lie so deep inside one another that the indentation would take more than "
       "268,435,456 bytes. Nest them less deeply."},
  };
  for (const auto& [text, diag] : cases) {
    const Formatting result(text);
    EXPECT_EQ(result.diag.format(), diag);
    EXPECT_EQ(result.good, result.diag.errorCount == 0);
    EXPECT_EQ(result.text.empty(), !result.good);
  }
}

TEST(FormatQuindle, HasNothingToDoTheSecondTime) {
  constexpr unsigned texts = 300;
  for (unsigned seed = 0; seed < texts; ++seed) {
    const Formatting once(Testing::RandomText::make(seed));
    const Formatting twice(once.text);
    EXPECT_TRUE(once.good && twice.good && twice.strays.empty()) << once.diag.format();
    EXPECT_EQ(once.text, twice.text);
  }
}

} // namespace
} // namespace Zamt
