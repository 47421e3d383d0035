#include "quindle/text/parseQuindle.h"

#include "tests/support/dumpDocument.h"

#include <gtest/gtest.h>

namespace Zamt {
namespace {

struct Reading {
  QuindleDocument doc;
  Diag diag;
  bool usable;

  explicit Reading(const std::string& text) : usable(parseQuindle(text, "f", doc, diag)) {}
};

struct Case {
  const char* promise;
  std::string text;
  std::string diagnostics;
};

void expectDiagnostics(const std::vector<Case>& cases) {
  for (const Case& c : cases) {
    const Reading reading(c.text);
    EXPECT_EQ(reading.diag.format(), c.diagnostics) << c.promise;
    EXPECT_EQ(reading.usable, reading.diag.errorCount == 0) << c.promise;
  }
}

const char* const noTrigger = "f: warning: This Quindle has no trigger, so nothing will ever run it. "
                              "Add an \"on run { ... }\" block.";

TEST(ParseFaults, OfTheFile) {
  expectDiagnostics({
      {"empty", "",
       "f:1:1: error: A Quindle file starts with the word \"quindle\", but this one starts with the end of "
       "the "
       "file."},
      {"position behind blanks and comments", "\r\n\t # c\n  5",
       "f:3:3: error: A Quindle file starts with the word \"quindle\", but this one starts with the number "
       "5."},
      {"words are compared with case", "Quindle \"a\" { }",
       "f:1:1: error: A Quindle file starts with the word \"quindle\", but this one starts with "
       "\"Quindle\"."},
      {"no trigger is no error", "quindle \"a\" { }", noTrigger},
      {"the head goes on without a name", "quindle { on run { } }",
       "f:1:9: error: Expected the Quindle's name in quotes but found \"{\"."},
      {"nothing goes on without a brace", "quindle \"a\" on run { }",
       "f:1:13: error: Expected \"{\" but found \"on\"."},
      {"last brace missing", "quindle \"a\" { on run { }",
       "f:1:25: error: Expected \"}\" but found the end of the file."},
      {"a wrong setting is one fault, what it finds another", "quindle \"a\" { description 5 on run { } }",
       "f:1:27: error: Expected the description in quotes but found the number 5.\n"
       "f:1:27: error: Expected a setting, a parameter or a trigger, but found the number 5."},
      {"recovery passes over settings up to the next parameter",
       "quindle \"a\" { bad author 5\n param x : Number on run { } }",
       "f:1:15: error: Expected a setting, a parameter or a trigger, but found \"bad\"."},
      {"tags", "quindle \"a\" { tags \"x\", on run { } }",
       "f:1:25: error: Expected a tag in quotes but found \"on\"."},
      {"enabled", "quindle \"a\" { enabled on run { } }",
       "f:1:23: error: Expected \"true\" or \"false\" after \"enabled\"."},
      {"the two tokens behind the end are scanned", "quindle \"a\" { on run { } } x \"y\n \"z\n",
       "f:1:30: error: This text is never closed."},
      {"no more than two", "quindle \"a\" { on run { } } x y \"z\n", ""},
      {"an earlier fault of the scanner comes first", "quindle \"a\" { on run { let 5 \"x\n } }",
       "f:1:30: error: This text is never closed.\n"
       "f:1:28: error: Expected a name for the value but found the number 5.\n"
       "f:1:28: error: Expected \"=\" but found the number 5."},
  });
}

TEST(ParseFaults, OfParametersAndTriggers) {
  const auto inFile = [](const std::string& items) { return "quindle \"a\" {\n" + items + "\non run { } }"; };
  expectDiagnostics({
      {"name", inFile("param : Number"), "f:2:7: error: Expected a parameter name but found \":\"."},
      {"colon", inFile("param x Number"), "f:2:9: error: Expected \":\" but found \"Number\"."},
      {"type", inFile("param x : = 5"), "f:2:11: error: Expected the parameter's type but found \"=\"."},
      {"value", inFile("param x : Number = ]"),
       "f:2:20: error: Expected a value but found \"]\".\n"
       "f:2:20: error: Expected a setting, a parameter or a trigger, but found \"]\"."},
      {"dots of a range belong to a word", inFile("param x : Number [lo..hi]"),
       "f:2:25: error: Expected \"..\" but found \"]\"."},
      {"end of a range", inFile("param x : Number [1..5 \"h\""),
       "f:2:24: error: Expected \"]\" but found a text."},
      {"a range stands behind the value", inFile("param x : Number [1..5] = 2"),
       "f:2:25: error: Expected a setting, a parameter or a trigger, but found \"=\"."},
      {"names are given once", inFile("param x : Number\nparam x : Text"),
       "f:3: error: There is already a parameter called \"x\"."},
      {"only numbers have a sign", inFile("param x : Class = -y"),
       "f:3:1: error: Only a number can be negated here."},
      {"each sign is a fault", inFile("param x : Class = --]"),
       "f:2:21: error: Expected a value but found \"]\".\n"
       "f:2:21: error: Only a number can be negated here.\n"
       "f:2:21: error: Only a number can be negated here.\n"
       "f:2:21: error: Expected a setting, a parameter or a trigger, but found \"]\"."},
      {"signs of tuples are faults where these end", inFile("param x : Class = -(-(1), 2) \"h\""),
       "f:2:25: error: Only a number can be negated here.\n"
       "f:2:30: error: Only a number can be negated here."},
      {"a comma calls for a value", inFile("param x : Color = (1, 2,)"),
       "f:2:25: error: Expected a value but found \")\"."},
      {"a tuple is kept without its end", inFile("param x : Color = (1, 2 \"h\""),
       "f:2:25: error: Expected \")\" but found a text."},
      {"the block of a bad occasion is not read", inFile("on click { select x }"),
       "f:2:4: error: Expected \"run\", \"key\", \"tile.enter\" or \"load\" after \"on\", but found "
       "\"click\".\n"
       "f:2:10: error: Expected a setting, a parameter or a trigger, but found \"{\".\n"
       "f:2:12: error: Expected a setting, a parameter or a trigger, but found \"select\".\n"
       "f:2:19: error: Expected a setting, a parameter or a trigger, but found \"x\".\n" +
           std::string(noTrigger)},
      {"key", inFile("on key { }"), "f:2:8: error: Expected the key to bind in quotes but found \"{\"."},
  });
}

TEST(ParseFaults, OfTokens) {
  const auto inRun = [](const std::string& steps) { return "quindle \"a\" { on run {\n" + steps + "\n} }"; };
  expectDiagnostics({
      {"a text ends with its line", inRun("report \"x"), "f:2:8: error: This text is never closed."},
      {"a text that ends with the file has no message of its own", "quindle \"a\" { on run { report \"x",
       "f:1:33: error: Expected \"}\" but found the end of the file.\n"
       "f:1:33: error: Expected \"}\" but found the end of the file."},
      {"a backslash that ends the file", "quindle \"a\" { icon \"x\\",
       "f:1:23: error: Expected \"}\" but found the end of the file."},
      {"unknown escape", inRun("report \"a\\qb\""), "f:2:11: warning: Unknown escape \\q - taken literally."},
      {"an escaped newline goes on in the next line", inRun("report \"a\\\nb\" 5"),
       "f:2:11: warning: Unknown escape \\\n - taken literally.\n"
       "f:3:4: error: Expected a step but found the number 5."},
      {"unclosed comment", "quindle \"a\" {\n  /*/ x\n\n ",
       "f:2:3: error: This comment is never closed.\n"
       "f:4:2: error: Expected \"}\" but found the end of the file."},
      {"columns count bytes", inRun("report \"\xc3\xa4\" \xc3"),
       "f:2:13: error: Expected a step but found \"\xc3\"."},
      {"a slash alone is a symbol", inRun("let x = 1 / 2"),
       "f:2:11: error: Expected a step but found \"/\"."},
      {"a zero byte is a symbol", inRun(std::string("let x = 1 \0", 11)),
       std::string("f:2:11: error: Expected a step but found \"") + '\0' + "\"."},
      {"a dot behind a number", inRun("let x = 5."), "f:2:10: error: Expected a step but found \".\"."},
      {"an exponent needs digits", inRun("let x = 1e"), "f:2:10: error: Expected a step but found \"e\"."},
      {"an arrow is one token", inRun("select x<-1"), "f:2:9: error: Expected a step but found \"<-\"."},
  });
}

TEST(ParseFaults, OfSteps) {
  const auto inRun = [](const std::string& steps) { return "quindle \"a\" { on run {\n" + steps + "\n} }"; };
  expectDiagnostics({
      {"let without a name", inRun("let = 3"),
       "f:2:5: error: Expected a name for the value but found \"=\"."},
      {"let without =", inRun("let x 3"), "f:2:7: error: Expected \"=\" but found the number 3."},
      {"create", inRun("create b = 3"),
       "f:2:12: error: Expected the creator to make it from, written \"Category/Identifier\" in quotes but "
       "found "
       "the number 3.\n"
       "f:2:12: error: Expected a step but found the number 3."},
      {"create without a name", inRun("create \"b\""),
       "f:2:8: error: Expected a name for the object but found a text.\n"
       "f:2:8: error: Expected \"=\" but found a text."},
      {"set has no quoted slots", inRun("set box.\"Size\" = 3"),
       "f:2:9: error: Expected \"=\" but found a text."},
      {"connect", inRun("connect 1 < 2"),
       "f:2:9: error: Expected the slot to connect but found the number 1.\n"
       "f:2:9: error: Expected \"<-\" but found the number 1."},
      {"source", inRun("connect a.b <- \"x\""),
       "f:2:16: error: Expected what to connect it to but found a text.\n"
       "f:2:16: error: Expected a step but found a text."},
      {"select without a condition", inRun("select"), "f:3:1: error: Expected a value but found \"}\"."},
      {"classify without into", inRun("classify \"G\""),
       "f:2:10: error: Expected \"into\" after \"classify\"."},
      {"color before as", inRun("classify into \"G\" color (1, 0, 0) as 2"),
       "f:2:35: error: Expected a step but found \"as\"."},
      {"call", inRun("call 1"),
       "f:2:6: error: Expected the operation to call but found the number 1.\n"
       "f:2:6: error: Expected a step but found the number 1."},
      {"action", inRun("call a. (1)"),
       "f:2:9: error: Expected the name of the action in quotes but found \"(\"."},
      {"run without arguments", inRun("run \"x\""), "f:3:1: error: Expected \"(\" but found \"}\"."},
      {"run without a name", inRun("run x()"),
       "f:2:5: error: Expected the name of the Quindle to run in quotes but found \"x\".\n"
       "f:2:5: error: Expected \"(\" but found \"x\".\n"
       "f:2:5: error: Expected a step but found \"x\"."},
      {"report", inRun("report 5"),
       "f:2:8: error: Expected the text to report in quotes but found the number 5.\n"
       "f:2:8: error: Expected a step but found the number 5."},
      {"else if", inRun("if a { } else if b { }"),
       "f:2:15: error: Expected \"{\" but found \"if\".\n"
       "f:2:18: error: Expected a step but found \"b\"."},
      {"for without each and in", inRun("for x y { }"),
       "f:2:5: error: Expected \"each\" after \"for\".\n"
       "f:2:7: error: Expected \"in\" after the loop variable."},
      {"a fault costs the next step its keyword", inRun("let x 3\nselect a"),
       "f:2:7: error: Expected \"=\" but found the number 3.\n"
       "f:3:8: error: Expected a step but found \"a\"."},
      {"param in a block", inRun("param x : Number"),
       "f:2:1: error: Expected a step but found \"param\".\n"
       "f:2:7: error: Expected a step but found \"x\"."},
      {"a brace in a block", inRun("{ select a"), "f:2:1: error: Expected a step but found \"{\"."},
      {"a block without its end costs all around it", "quindle \"a\" { on run { if a { select b",
       "f:1:39: error: Expected \"}\" but found the end of the file.\n"
       "f:1:39: error: Expected \"}\" but found the end of the file.\n"
       "f:1:39: error: Expected \"}\" but found the end of the file."},
  });
}

TEST(ParseFaults, OfExpressions) {
  const auto inRun = [](const std::string& steps) { return "quindle \"a\" { on run {\n" + steps + "\n} }"; };
  expectDiagnostics({
      {"one comparison", inRun("select a < b < c"), "f:2:14: error: Expected a step but found \"<\"."},
      {"parentheses make no tuple", inRun("select (0.2, 0.1)"),
       "f:2:12: error: Expected \")\" but found \",\".\n"
       "f:2:12: error: Expected a step but found \",\"."},
      {"empty parentheses", inRun("select ()"), "f:2:9: error: Expected a value but found \")\"."},
      {"a comma calls for an argument", inRun("select f(1,)"),
       "f:2:12: error: Expected a value but found \")\"."},
      {"no arithmetic", inRun("let y = x - 1"), "f:2:11: error: Expected a step but found \"-\"."},
      {"unclosed brackets, inside out", "quindle \"a\" { on run { select f(not (a and",
       "f:1:43: error: Expected a value but found the end of the file.\n"
       "f:1:43: error: Expected \")\" but found the end of the file.\n"
       "f:1:43: error: Expected \")\" but found the end of the file.\n"
       "f:1:43: error: Expected \"}\" but found the end of the file.\n"
       "f:1:43: error: Expected \"}\" but found the end of the file."},
  });
}

TEST(ParseFaults, AnEarlierErrorMakesTheResultFalse) {
  QuindleDocument doc;
  Diag diag;
  diag.error("before");
  EXPECT_FALSE(parseQuindle("quindle \"a\" { on run { } }", "f", doc, diag));
  EXPECT_EQ(diag.format(), "error: before");
}

TEST(ParseFaults, LeaveInTheDocumentWhatCouldBeRead) {
  const Reading reading("quindle \"a\" { category \"c\" category 5\n"
                        "param p : Number [1 2]\nparam q : Number = -x param q : Text\n"
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
