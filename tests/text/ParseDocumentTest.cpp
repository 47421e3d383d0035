#include "tests/support/dumpDocument.h"
#include "tests/support/parsed.h"

#include <gtest/gtest.h>

#include <limits>

namespace Zamt {
namespace {

using Testing::dumpDocument;
using Testing::dumpExpr;
using Testing::dumpSteps;
using Testing::dumpValue;
using Testing::parsed;
using Testing::parsedExpr;
using Testing::parsedSteps;

TEST(ParseDocument, ReadsEverySettingParameterAndOccasion) {
  const QuindleDocument doc =
      parsed("quindle \"N \\\"x\\\"\" {\n"
             "description \"old\" category \"c\" icon \"i\" shortcut \"Ctrl+1\"\n"
             "author \"me\" version \"1\" tags \"a\", \"b\" enabled false tags \"c\"\n"
             "description \"new\"\n"
             "param n : Number = 2 [0 .. 5] \"how many\"\n"
             "param a : Grid = active param b : Region = brush\n"
             "param p : Surface = pick param g : Class = Ground.x\n"
             "on run { } on key \"K\" { } on tile.enter { } on load { } on run { }\n"
             "param late : Text }",
             "dir/f");
  EXPECT_EQ(dumpDocument(doc), "quindle <N \"x\"> from <dir/f>\n"
                               "description <new>\ncategory <c>\nicon <i>\nshortcut <Ctrl+1>\n"
                               "author <me>\nversion <1>\ntag <a>\ntag <b>\ntag <c>\ndisabled\n"
                               "param@5:0 n : Number = Written Number 2 [Number 0 .. Number 5] <how many>\n"
                               "param@6:0 a : Grid = Active None [None .. None]\n"
                               "param@6:0 b : Region = Brush None [None .. None]\n"
                               "param@7:0 p : Surface = Pick None [None .. None]\n"
                               "param@7:0 g : Class = Written Identifier Ground.x [None .. None]\n"
                               "param@9:0 late : Text = Written None [None .. None]\n"
                               "on@8:0 Run\non@8:0 Key <K>\non@8:0 TileEnter\non@8:0 Load\non@8:0 Run\n");
}

TEST(ParseDocument, ReadsValues) {
  const std::tuple<std::string, const char*, double> cases[] = {
      {"0.50", "Number 0.50", 0.5},
      {".5", "Number .5", 0.5},
      {"1e-3", "Number 1e-3", 1e-3},
      {"1E+2", "Number 1E+2", 100},
      {"-4", "Number -4", -4},
      {"--5", "Number --5", 5},
      {"- 4", "Number -4", -4},
      {"1e999", "Number 1e999", std::numeric_limits<double>::infinity()},
      {"\"\\\"\\\\\\n\\t\"", "Text \"\\\"\\\\\\n\\t\"", 0},
      {"true", "Boolean true", 0},
      {"()", "Tuple ()", 0},
      {"(1, (a.b, -2), \"x\")", "Tuple (1, (a.b, -2), \"x\")", 0},
  };
  for (const auto& [text, dump, number] : cases) {
    const QuindleDocument doc = parsed("quindle \"a\" { param x : T = " + text + " on run { } }");
    EXPECT_EQ(dumpValue(doc.params.at(0).defaultValue), dump);
    EXPECT_EQ(doc.params[0].defaultValue.numberValue, number) << text;
  }
}

TEST(ParseDocument, KeepsAPrivateCopyOfItsSource) {
  QuindleDocument doc;
  doc.name = "quindle \"a much longer name than that\" { on run { report \"done\" } }";
  Diag diag;
  EXPECT_TRUE(parseQuindle(doc.name, doc.name, doc, diag)) << diag.format();
  EXPECT_EQ(doc.name, "a much longer name than that");
}

TEST(ParseDocument, ReadsEveryStep) {
  const std::pair<const char*, const char*> cases[] = {
      {"let x = 1 let let = x", "Let@2:1 name=x value=[Literal@2:9 Number 1]\n"
                                "Let@2:11 name=let value=[Reference@2:21 x]\n"},
      {"create b = \"C/I\"", "Create@2:1 name=b value=[Literal@2:1 Text \"C/I\"]\n"},
      {"select x", "Select@2:1 condition=[Reference@2:8 x]\n"},
      {"classify into \"G\" as 2 color (0.2, 1)",
       "Classify@2:1 value=[Literal@2:15 Text \"G\"] as=Number 2 color=Tuple (0.2, 1)\n"},
      {"classify into g colour red", "Classify@2:1 value=[Reference@2:15 g] color=Identifier red\n"},
      {"set box.Size = -3", "Set@2:1 name=box.Size value=[Literal@2:16 Number -3]\n"},
      {"connect a.b <- c.d", "Connect@2:1 name=a.b source=c.d\n"},
      {"call a.b call a.b()", "Call@2:1 name=a.b\nCall@2:10 name=a.b\n"},
      {"call a.\"Do It\"(x: 1, y)",
       "Call@2:1 name=a.Do It arg=x:[Literal@2:19 Number 1] arg=:[Reference@2:22 y]\n"},
      {"run \"O\"(f(a: 1))", "Run@2:1 name=O arg=:[Call@2:9 f a: [Literal@2:14 Number 1]]\n"},
      {"report \"x\"", "Report@2:1 value=[Literal@2:1 Text \"x\"]\n"},
      {"if a { let b = 1 } else { if c { } else { report \"d\" } }",
       "If@2:1 condition=[Reference@2:4 a]\n"
       "  Let@2:8 name=b value=[Literal@2:16 Number 1]\n"
       "Else\n"
       "  If@2:27 condition=[Reference@2:30 c]\n"
       "  Else\n"
       "    Report@2:43 value=[Literal@2:43 Text \"d\"]\n"},
      {"for each i in l { select i }",
       "ForEach@2:1 name=i value=[Reference@2:15 l]\n  Select@2:19 condition=[Reference@2:26 i]\n"},
  };
  for (const auto& [text, dump] : cases) EXPECT_EQ(dumpSteps(parsedSteps(text)), dump) << text;
}

TEST(ParseDocument, ReadsExpressionsByPrecedence) {
  const std::pair<const char*, const char*> cases[] = {
      {"a or b and c", "[Or@2:8 [Reference@2:8 a] [And@2:13 [Reference@2:13 b] [Reference@2:19 c]]]"},
      {"a or b or c", "[Or@2:8 [Reference@2:8 a] [Reference@2:13 b] [Reference@2:18 c]]"},
      {"(a or b) or c", "[Or@2:9 [Or@2:9 [Reference@2:9 a] [Reference@2:14 b]] [Reference@2:20 c]]"},
      {"(a or b) and c", "[And@2:9 [Or@2:9 [Reference@2:9 a] [Reference@2:14 b]] [Reference@2:21 c]]"},
      {"a and b and c or d and e", "[Or@2:8 [And@2:8 [Reference@2:8 a] [Reference@2:14 b] [Reference@2:20 "
                                   "c]] [And@2:25 [Reference@2:25 d] [Reference@2:31 e]]]"},
      {"a or (b and (c or d)) or e", "[Or@2:8 [Reference@2:8 a] [And@2:14 [Reference@2:14 b] [Or@2:21 "
                                     "[Reference@2:21 c] [Reference@2:26 d]]] [Reference@2:33 e]]"},
      {"not a < b", "[Not@2:8 [Compare@2:12 < [Reference@2:12 a] [Reference@2:16 b]]]"},
      {"not not a and b", "[And@2:8 [Not@2:8 [Not@2:12 [Reference@2:16 a]]] [Reference@2:22 b]]"},
      {"(not a) == true", "[Compare@2:9 == [Not@2:9 [Reference@2:13 a]] [Literal@2:19 Boolean true]]"},
      {"a.b >= (c < d)",
       "[Compare@2:8 >= [Reference@2:8 a.b] [Compare@2:16 < [Reference@2:16 c] [Reference@2:20 d]]]"},
      {"x < -1", "[Compare@2:8 < [Reference@2:8 x] [Literal@2:12 Number -1]]"},
      {"and", "[Literal@2:8 Identifier and]"},
      {"f ()", "[Call@2:8 f]"},
      {"f(a, b: (g(c) and d), not e) != \"t\"",
       "[Compare@2:8 != [Call@2:8 f [Reference@2:10 a] b: [And@2:17 [Call@2:17 g [Reference@2:19 c]] "
       "[Reference@2:26 d]] [Not@2:30 [Reference@2:34 e]]] [Literal@2:40 Text \"t\"]]"},
  };
  for (const auto& [text, dump] : cases) EXPECT_EQ(dumpExpr(parsedExpr(text)), dump) << text;
}

TEST(ParseDocument, ParenthesesInsideOneAnotherOnlyGroup) {
  const std::pair<const char*, const char*> cases[] = {
      {"(((a or b)) and (((c))))", "(a or b) and c"},
      {"((not a) and b)", "not a and b"},
      {"((not ((a or b))) == (c))", "(not (a or b)) == c"},
      {"((a) < ((b)))", "a < b"},
      {"(((a < b)) == c)", "(a < b) == c"},
      {"f(((a)), ((b or c) and d))", "f(a, (b or c) and d)"},
      {"((a or b) or c)", "a or b or c"},
      {"(((a) and b) or c) and d", "(a and b or c) and d"},
  };
  for (const auto& [text, plain] : cases) EXPECT_EQ(parsedExpr(text).toSource(), plain) << text;
}

TEST(ParseDocument, PlacesCommentsAmongTheSteps) {
  const std::pair<const char*, const char*> cases[] = {
      {"call a\n# c\ncall b", "Call@2:1 name=a\nComment@3:0 comment=<c>\nCall@4:1 name=b\n"},
      {"call a // c\ncall b", "Call@2:1 name=a\nComment@2:0 comment=<c>\nCall@3:1 name=b\n"},
      {"/* c */ call /* d */ a", "Call@2:9 name=a\nComment@2:0 comment=<c>\nComment@2:0 comment=<d>\n"},
      {"if a { # c\n# d\n}\n# e", // inside a block first and last, and behind it
       "If@2:1 condition=[Reference@2:4 a]\n  Comment@2:0 comment=<c>\n  Comment@3:0 comment=<d>\n"
       "Comment@5:0 comment=<e>\n"},
      {"if a {\n} # c\n", "If@2:1 condition=[Reference@2:4 a]\nComment@3:0 comment=<c>\n"},
      {"if a {\n}\n# c\nelse {\ncall b }",
       "If@2:1 condition=[Reference@2:4 a]\nElse\n  Comment@4:0 comment=<c>\n  Call@6:1 name=b\n"},
      {"/* a\n\n  b\t\n*/", "Comment@2:0 comment=<a>\nComment@2:0 comment=<>\nComment@2:0 comment=<b>\n"},
      {"/*a\n*/", "Comment@2:0 comment=<a>\n"}, // a last newline opens no line
      {"#\n# \n//\n/**/", ""},
      {"#  \n# \r", "Comment@2:0 comment=<>\nComment@3:0 comment=<>\n"},
      {"# c\r\n/* d\r\ne */", "Comment@2:0 comment=<c>\nComment@3:0 comment=<d>\nComment@3:0 comment=<e>\n"},
  };
  for (const auto& [text, dump] : cases) EXPECT_EQ(dumpSteps(parsedSteps(text)), dump) << text;
}

TEST(ParseDocument, GivesTheCommentsOfTheHeadToTheFirstBlockAndDropsTheLast) {
  const QuindleDocument doc = parsed("# 1\nquindle \"a\" { # 2\n param x : Text # 3\n on load { # 4\n } # 5\n"
                                     "on run {\n # 6\n } # 7\n # 8\n} # 9");
  EXPECT_EQ(dumpSteps(doc.triggers.at(0).steps), "Comment@1:0 comment=<1>\nComment@2:0 comment=<2>\n"
                                                 "Comment@3:0 comment=<3>\nComment@4:0 comment=<4>\n");
  EXPECT_EQ(dumpSteps(doc.triggers.at(1).steps), "Comment@5:0 comment=<5>\nComment@7:0 comment=<6>\n");
}

TEST(ParseDocument, KeepsItsTreesThroughPrintingAndReading) {
  for (const char* text : {"(a or b) and not (c < 1e-3) or f(x: (a and b), not g())", "(a < b) == (not c)",
                           "not not (a and (b or c))", "\"q\\\"\\\\\\n\\t\" != -0.50"}) {
    const std::string printed = parsedExpr(text).toSource();
    EXPECT_EQ(printed, parsedExpr(printed).toSource());
  }
  EXPECT_EQ(parsedExpr("((a and b) or (c))").toSource(), "a and b or c");
}

} // namespace
} // namespace Zamt
