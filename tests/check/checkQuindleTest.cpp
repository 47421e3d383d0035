#include "quindle/check/checkQuindle.h"

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

struct Case {
  const char* text;
  std::string findings; ///< all of them, a line each
};

void expectFindings(const QuindleDocument& doc, const std::string& findings, const std::string& about) {
  Diag diag;
  diag.error("before");
  const bool passed = checkQuindle(doc, diag);
  EXPECT_EQ(passed, diag.errorCount == 1) << about;
  diag.entries.erase(diag.entries.begin());
  EXPECT_EQ(diag.format(), findings) << about;
}

const std::string noDescription = "This Quindle has no description. That text is what the library, the block "
                                  "palette and the AI use to tell the user what it does.";
std::string taken(const std::string& name) {
  return "error: There is already something called \"" + name +
         "\" here. Pick another name, or the later one silently wins wherever both are in reach.";
}
const std::string onEveryPoint =
    "warning: This changes the data before anything has been selected, so it applies to every point. Add a "
    "\"select\" first if that is not what you meant.";
std::string noHelp(const std::string& name) {
  return "warning: The parameter \"" + name +
         "\" has no description. The block editor, the completion and the AI all show that text, so a "
         "parameter without one is hard for anybody to use.";
}
std::string unread(const std::string& name) {
  return "warning: Nothing uses the parameter \"" + name + "\". It will be asked for and then ignored.";
}

TEST(CheckQuindle, JudgesTheDocumentInItsFixedOrder) {
  const std::string twoRuns =
      "error: There is more than one \"on run\" block, and nothing decides which of them runs.";
  const Case cases[] = {
      {"quindle \"a\" { description \"d\" on load { # nothing yet\n } }", ""},
      {"quindle \"a\" { description \"d\" on key \"U\" { report \"\" } on key \"U\" { report \"\" } }", ""},
      {"quindle \"a\" { description \"d\" }",
       "f: warning: This Quindle has no trigger, so nothing will ever run it."},
      {"quindle \"a\" { description \"d\" param p : Grid \"h\" }",
       "f:1: " + unread("p") + "\nf: warning: This Quindle has no trigger, so nothing will ever run it."},
      {"quindle \"\" { shortcut \"U\" param p : Text\non run { run \"\"() } on run { }\non key \"U\" { let p "
       "= "
       "1 }\non key \"\" { }\non key \"Ctrl+U\" { report \"{p}\" } }",
       "f: error: This Quindle has no name, so it cannot be listed or run by name.\n"
       "f: warning: " +
           noDescription + "\nf:1: " + noHelp("p") +
           "\nf:2: error: This Quindle runs itself, which would never stop.\n"
           "f:2: warning: This trigger does nothing.\n"
           "f:3: " +
           taken("p") +
           "\nf:4: error: This \"on key\" trigger names no key.\n"
           "f:4: warning: This trigger does nothing.\n"
           "f: " +
           twoRuns +
           "\nf:4: warning: The shortcut is \"U\" but there is also an \"on key\" for \"\". Both will be "
           "bound, "
           "which is probably not what was meant.\n"
           "f:5: warning: The shortcut is \"U\" but there is also an \"on key\" for \"Ctrl+U\". Both will be "
           "bound, which is probably not what was meant."},
  };
  for (const Case& c : cases) expectFindings(parsed(c.text, "f"), c.findings, c.text);
}

TEST(CheckQuindle, NamesTheDocumentWhereThereIsNoFile) {
  expectFindings(parsed("quindle \"a\" { on run { } }", ""),
                 "a: warning: " + noDescription + "\na:1: warning: This trigger does nothing.", "a name");
}

TEST(CheckQuindle, JudgesSteps) {
  const auto at = [](int line, const std::string& finding) {
    return "test.quindle:" + std::to_string(line) + ": " + finding;
  };
  const std::string noCreator =
      "error: This says what to call the object but not what to make it from. Write "
      "the creator as \"Category/Identifier\".";
  const std::string outOfRange = "error: A class number has to be a whole number between 0 and 255.";
  const std::string noNumber = "error: The class number after \"as\" has to be a plain number.";
  const auto hides = [](const std::string& name) {
    return "warning: The loop variable \"" + name +
           "\" hides something of the same name from outside the loop.";
  };
  const Case cases[] = {
      {"let a = 1\ncreate a = \"C/D\"\nlet p = 1", at(3, taken("a")) + '\n' + at(4, taken("p"))},
      {"if x { let a = 1 } else { let a = 2 }\nlet a = 3\nif x { let a = 4 }", at(4, taken("a"))},
      {"for each x in y {\nlet x = 1\nlet z = 1 }\nlet x = 1\nlet z = 1\nfor each x in y { }\nlet x = 2",
       at(3, taken("x")) + '\n' + at(7, hides("x")) + '\n' + at(8, taken("x"))},
      {"create a.b.c = \"C/D\"\ncreate b = \"Plain\"\ncreate c = \"\"",
       at(2,
          "error: \"a.b.c\" names a slot, not an object. A created object gets a plain name, which the steps "
          "after it then write as a.slot.") +
           '\n' +
           at(3, "warning: \"Plain\" does not look like a creator name. They are written "
                 "\"Category/Identifier\", "
                 "the way the object palette and a .scn file spell them.") +
           '\n' + at(4, noCreator)},
      {"select x classify into c as 0 classify into c as 255\nclassify into c as 256\nclassify into c as -1\n"
       "classify into c as 1.5\nclassify into c as \"two\"",
       at(3, outOfRange) + '\n' + at(4, outOfRange) + '\n' + at(5, outOfRange) + '\n' + at(6, noNumber)},
      {"if x { select y } else { select z }\nclassify into c", ""},
      {"if x { select y\nclassify into c } else {\nclassify into c\nselect z }", at(4, onEveryPoint)},
      {"if x { for each i in y { select i } } else { if z { select z } }\nclassify into c",
       at(3, onEveryPoint)},
      {"select x if y { if z { } classify into c } else { classify into c } classify into c", ""},
      {"for each i in y {\nclassify into c\nselect i }\nclassify into c", at(3, onEveryPoint)},
      {"select x } on load {\nclassify into c", at(3, onEveryPoint)},
  };
  const std::string head = "description \"d\" param p : Text \"h\" on load { report \"{p}\" }";
  for (const Case& c : cases) expectFindings(parsedRun(c.text, head), c.findings, c.text);
}

TEST(CheckQuindle, JudgesParameters) {
  struct ParameterCase {
    const char* params;
    const char* steps;
    std::string findings;
  };
  const std::string at = "test.quindle:1: ";
  const auto ends = [](const char* text) {
    return "error: The default of \"p\" is " + std::string(text) + '.';
  };
  const std::string range =
      "error: The range of \"p\" runs from 5.0 down to -1, so no value can ever satisfy it.";
  const ParameterCase cases[] = {
      {"param p : Number = 0.50 [1 .. 5] \"h\"", "let a = p", at + ends("0.50, below its own minimum of 1")},
      {"param p : Number = 7 [5.0 .. -1]", "let a = p",
       at + range + '\n' + at + ends("7, above its own maximum of -1") + '\n' + at + noHelp("p")},
      {"param p : Number = pick [5 .. 5] \"h\" param q : T = \"x\" [2 .. 1.0] \"h\" param r : T = 3 [a .. "
       "\"b\"] "
       "\"h\"",
       "set a.b = f(x: p, g(not (q < r)))",
       at + "error: The range of \"q\" runs from 2 down to 1.0, so no value can ever satisfy it."},
      {"param a : T \"h\" param f : T \"h\" param s : T \"h\" param k : T \"h\"",
       "connect a.b <- s set a = 1 call a.b(k: f()) create k = \"k/k\" for each l in f() { }",
       at + unread("a") + '\n' + at + unread("f") + '\n' + at + unread("s") + '\n' + at + unread("k") +
           "\ntest.quindle:2: " + taken("k")},
      {"param a : T \"h\" param b : T \"h\" param c : T \"h\" param d : T \"h\" param e : T \"h\"",
       "if a { } else { for each x in b { run \"R\"(1, n: c) report \"} {e}{ d } {d\" } }", at + unread("d")},
      {"param g : Grid \"h\" param f : Field \"h\" param s : Surface \"h\"", "select x classify into y",
       at + unread("s")},
  };
  for (const ParameterCase& c : cases)
    expectFindings(parsedRun(c.steps, "description \"d\" " + std::string(c.params)), c.findings, c.params);
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
    EXPECT_EQ(diag.entries.back().message, onEveryPoint.substr(std::string("warning: ").size()));
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
