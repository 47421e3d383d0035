#include "quindle/text/parseQuindle.h"

#include "tests/support/dumpDocument.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace Zamt {
namespace {

struct Reading {
  QuindleDocument doc;
  Diag diag;
  bool usable;

  explicit Reading(const std::string& text) : usable(parseQuindle(text, "f", doc, diag)) {}
};

/// What is said of a text, a fault written as "line:column sentence".
struct Case {
  std::string text;
  std::vector<std::string> faults;
};

void expectFaults(const std::string& before, const std::vector<Case>& cases, const std::string& after) {
  for (const Case& c : cases) {
    std::string expected;
    for (const std::string& fault : c.faults) {
      const std::size_t blank = fault.find(' ');
      expected +=
          (expected.empty() ? "f:" : "\nf:") + fault.substr(0, blank) + ": error:" + fault.substr(blank);
    }
    const Reading reading(before + c.text + after);
    EXPECT_EQ(reading.diag.format(), expected);
    EXPECT_EQ(reading.usable, c.faults.empty()) << c.text;
  }
}

void expectFaultsOfSteps(const std::vector<Case>& cases) {
  expectFaults("quindle \"a\" { on run {\n", cases, "\n} }");
}

TEST(ParseFaults, OfTheFile) {
  const std::string start = "A Quindle file starts with the word \"quindle\", but this one starts with ";
  expectFaults(
      "",
      {
          {"", {"1:1 " + start + "the end of the file."}},
          {"\r\n\t # c\n  5", {"3:3 " + start + "the number 5."}},
          {"quindle { on run { } }", {R"(1:9 Expected the Quindle's name in quotes but found "{".)"}},
          {"quindle \"a\" on run { }", {R"(1:13 Expected "{" but found "on".)"}},
          {"quindle \"a\" { description 5 on run { } }",
           {"1:27 Expected the description in quotes but found the number 5.",
            "1:27 Expected a setting, a parameter or a trigger, but found the number 5."}},
          // Recovery passes over settings up to the next parameter.
          {"quindle \"a\" { bad author 5\n param x : Number on run { } }",
           {R"(1:15 Expected a setting, a parameter or a trigger, but found "bad".)"}},
          {"quindle \"a\" { tags \"x\", on run { } }", {R"(1:25 Expected a tag in quotes but found "on".)"}},
          {"quindle \"a\" { enabled on run { } }", {R"(1:23 Expected "true" or "false" after "enabled".)"}},
          // The two tokens behind the end are scanned, and no more.
          {"quindle \"a\" { on run { } } x \"y\n \"z\n", {"1:30 This text is never closed."}},
          {"quindle \"a\" { on run { } } x y \"z\n", {}},
          // The scanner is ahead, so that its faults come first.
          {"quindle \"a\" { on run { let 5 \"x\n } }",
           {"1:30 This text is never closed.", "1:28 Expected a name for the value but found the number 5.",
            R"(1:28 Expected "=" but found the number 5.)"}},
      },
      "");
}

TEST(ParseFaults, OfParametersAndTriggers) {
  const std::string negated = " Only a number can be negated here.";
  const std::string noItem = " Expected a setting, a parameter or a trigger, but found ";
  expectFaults("quindle \"a\" {\n",
               {
                   {"param : Number", {R"(2:7 Expected a parameter name but found ":".)"}},
                   {"param x Number", {R"(2:9 Expected ":" but found "Number".)"}},
                   {"param x : = 5", {R"(2:11 Expected the parameter's type but found "=".)"}},
                   {"param x : Number [lo..hi]", {R"(2:25 Expected ".." but found "]".)"}},
                   {"param x : Number [1..5 \"h\"", {R"(2:24 Expected "]" but found a text.)"}},
                   {"param x : Class = --]",
                    {R"(2:21 Expected a value but found "]".)", "2:21" + negated, "2:21" + negated,
                     "2:21" + noItem + "\"]\"."}},
                   {"param x : Class = -(-(1), 2) \"h\"", {"2:25" + negated, "2:30" + negated}},
                   {"param x : Color = (1, 2 \"h\"", {"2:25 Expected \")\" but found a text."}},
                   {"on key { }", {R"(2:8 Expected the key to bind in quotes but found "{".)"}},
               },
               "\non run { } }");
  const std::string noTrigger = "f: warning: This Quindle has no trigger, so nothing will ever run it. Add "
                                "an \"on run { ... }\" block.";
  EXPECT_EQ(Reading("quindle \"a\" { }").diag.format(), noTrigger);
  // The block of a bad occasion is not read.
  EXPECT_EQ(Reading("quindle \"a\" { on click { } }").diag.format(),
            "f:1:18: error: Expected \"run\", \"key\", \"tile.enter\" or \"load\" after \"on\", but found "
            "\"click\".\nf:1:24: error:" +
                noItem + "\"{\".\n" + noTrigger);
}

TEST(ParseFaults, OfTokens) {
  expectFaultsOfSteps({
      {"report \"x", {"2:8 This text is never closed."}},
      {"report \"\xc3\xa4\" \xc3", {"2:13 Expected a step but found \"\xc3\"."}}, // columns count bytes
      {std::string("let x = 1 \0", 11), {std::string("2:11 Expected a step but found \"") + '\0' + "\"."}},
      {"let x = 1 / 2", {R"(2:11 Expected a step but found "/".)"}},
      {"let x = 5.", {R"(2:10 Expected a step but found ".".)"}},
      {"let x = 1e", {R"(2:10 Expected a step but found "e".)"}},
      {"select x<-1", {R"(2:9 Expected a step but found "<-".)"}},
  });
  // A text that ends with the file has no message of its own.
  const std::string noBrace = " Expected \"}\" but found the end of the file.";
  expectFaults("quindle \"a\" { ",
               {
                   {"on run { report \"x", {"1:33" + noBrace, "1:33" + noBrace}},
                   {"icon \"x\\", {"1:23" + noBrace}},
                   {"\n  /*/ x\n\n ", {"2:3 This comment is never closed.", "4:2" + noBrace}},
               },
               "");
  EXPECT_EQ(Reading("quindle \"a\" { on run { report \"a\\qb\" report \"a\\\nb\" } }").diag.format(),
            "f:1:34: warning: Unknown escape \\q - taken literally.\n"
            "f:1:48: warning: Unknown escape \\\n - taken literally.");
}

TEST(ParseFaults, OfSteps) {
  const std::string creator =
      "Expected the creator to make it from, written \"Category/Identifier\" in quotes";
  const std::string end = "Expected \"}\" but found the end of the file.";
  expectFaultsOfSteps({
      {"let = 3", {R"(2:5 Expected a name for the value but found "=".)"}},
      {"create b = 3",
       {"2:12 " + creator + " but found the number 3.", "2:12 Expected a step but found the number 3."}},
      {"create \"b\"",
       {"2:8 Expected a name for the object but found a text.", R"(2:8 Expected "=" but found a text.)"}},
      {"connect 1 < 2",
       {"2:9 Expected the slot to connect but found the number 1.",
        R"(2:9 Expected "<-" but found the number 1.)"}},
      {"connect a.b <- \"x\"",
       {"2:16 Expected what to connect it to but found a text.", "2:16 Expected a step but found a text."}},
      {"classify \"G\"", {R"(2:10 Expected "into" after "classify".)"}},
      {"classify into \"G\" color (1, 0, 0) as 2", {R"(2:35 Expected a step but found "as".)"}},
      {"call 1",
       {"2:6 Expected the operation to call but found the number 1.",
        "2:6 Expected a step but found the number 1."}},
      {"call a. (1)", {R"(2:9 Expected the name of the action in quotes but found "(".)"}},
      {"run x()",
       {R"(2:5 Expected the name of the Quindle to run in quotes but found "x".)",
        R"(2:5 Expected "(" but found "x".)", R"(2:5 Expected a step but found "x".)"}},
      {"report 5",
       {"2:8 Expected the text to report in quotes but found the number 5.",
        "2:8 Expected a step but found the number 5."}},
      {"if a { } else if b { }",
       {R"(2:15 Expected "{" but found "if".)", R"(2:18 Expected a step but found "b".)"}},
      {"for x y { }",
       {R"(2:5 Expected "each" after "for".)", R"(2:7 Expected "in" after the loop variable.)"}},
      // A fault costs the next step its keyword.
      {"let x 3\nselect a",
       {R"(2:7 Expected "=" but found the number 3.)", R"(3:8 Expected a step but found "a".)"}},
  });
  expectFaults("quindle \"a\" ",
               {{"{ on run { if a { select b", {"1:39 " + end, "1:39 " + end, "1:39 " + end}}}, "");
}

TEST(ParseFaults, OfExpressions) {
  expectFaultsOfSteps({
      {"select a < b < c", {R"(2:14 Expected a step but found "<".)"}},
      {"select (0.2, 0.1)",
       {"2:12 Expected \")\" but found \",\".", R"(2:12 Expected a step but found ",".)"}},
      {"select ()", {"2:9 Expected a value but found \")\"."}},
  });
  const std::string bracket = "1:43 Expected \")\" but found the end of the file.";
  const std::string brace = R"(1:43 Expected "}" but found the end of the file.)";
  expectFaults("quindle \"a\" { on run { ",
               {{"select f(not (a and",
                 {"1:43 Expected a value but found the end of the file.", bracket, bracket, brace, brace}}},
               "");
}

TEST(ParseFaults, RecoveryStopsAtWhatBeginsAStepOrAnItemAndThrowsThatAway) {
  const std::string number = " Expected a step but found the number ";
  for (const std::string stop : {"let", "create", "select", "classify", "set", "connect", "call", "run", "if",
                                 "for", "report", "param", "on", "{"})
    expectFaultsOfSteps({{"5 into\n" + stop + "\n6", {"2:1" + number + "5.", "4:1" + number + "6."}}});
  for (const std::string other : {"into", "else", "each", "as", "quindle", "category", "(", "\"x\""})
    expectFaultsOfSteps({{"5\n" + other + "\n6", {"2:1" + number + "5."}}});
  const std::string item = "Expected a setting, a parameter or a trigger, but found ";
  expectFaults(
      "quindle \"a\" {\n",
      {
          {"5 x let tags \"t\" 6", {"2:1 " + item + "the number 5.", "2:18 " + item + "the number 6."}},
          {"on run 5 let x\nparam p : T",
           {R"(2:8 Expected "{" but found the number 5.)", "2:10 " + item + "\"let\".",
            "2:14 " + item + "\"x\"."}},
          {"on click 5 x\nparam p : T",
           {R"(2:4 Expected "run", "key", "tile.enter" or "load" after "on", but found "click".)"}},
      },
      "\non run { } }");
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
