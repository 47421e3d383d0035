#include "tests/support/dumpDocument.h"
#include "tests/support/parsed.h"

#include <gtest/gtest.h>

namespace Zamt {
namespace {

using Testing::dumpDocument;
using Testing::dumpExpr;
using Testing::dumpSteps;
using Testing::dumpValue;
using Testing::parsed;
using Testing::parsedExpr;
using Testing::parsedSteps;

TEST(ParseDocument, ReadsValues) {
  const std::pair<std::string, const char*> cases[] = {
      {"0.50", "Number 0.50 (0.5)"},
      {"1e-3", "Number 1e-3 (0.001)"},
      {"--5", "Number --5 (5)"},
      {"- 4", "Number -4"},
      {"1e999", "Number 1e999 (inf)"},
      {"\"\\\"\\\\\\n\\t\"", "Text \"\\\"\\\\\\n\\t\""},
      {"(1, (a.b, -2), \"x\")", "Tuple (1, (a.b, -2), \"x\")"},
  };
  for (const auto& [text, dump] : cases) {
    const QuindleDocument doc = parsed("quindle \"a\" { param x : T = " + text + " on run { } }");
    EXPECT_EQ(dumpValue(doc.params.at(0).defaultValue), dump);
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
      {"classify into \"G\" as 2 color (0.2, 1)",
       "Classify@2:1 value=[Literal@2:15 Text \"G\"] as=Number 2 color=Tuple (0.2, 1)\n"},
      {"call a.\"Do It\"(x: 1, y)",
       "Call@2:1 name=a.Do It arg=x:[Literal@2:19 Number 1] arg=:[Reference@2:22 y]\n"},
      {"run \"O\"(f(a: 1))", "Run@2:1 name=O arg=:[Call@2:9 f a: [Literal@2:14 Number 1]]\n"},
      {"if a { } else { report \"d\" }",
       "If@2:1 condition=[Reference@2:4 a]\nElse\n  Report@2:17 value=[Literal@2:17 Text \"d\"]\n"},
      // A step stands at its keyword, whatever line its words stand on, and so does its text.
      {"create\nb =\n\"C/I\" report\n\"d\"", "Create@2:1 name=b value=[Literal@2:1 Text \"C/I\"]\n"
                                             "Report@4:7 value=[Literal@4:7 Text \"d\"]\n"},
      {"for each i in l { select i }",
       "ForEach@2:1 name=i value=[Reference@2:15 l]\n  Select@2:19 condition=[Reference@2:26 i]\n"},
  };
  for (const auto& [text, dump] : cases) EXPECT_EQ(dumpSteps(parsedSteps(text)), dump) << text;
}

TEST(ParseDocument, ParametersAndTriggersStandOnTheLineOfTheirFirstWord) {
  EXPECT_EQ(
      dumpDocument(parsed("quindle \"a\" {\nparam\nx :\nT\non\nkey\n\"k\" {\n} }")),
      "quindle <a> from <test.quindle>\nparam@2:0 x : T = Written None [None .. None]\non@5:0 Key <k>\n");
}

TEST(ParseDocument, ReadsExpressionsByPrecedence) {
  const std::pair<const char*, const char*> cases[] = {
      {"(a or b) or c", "[Or@2:9 [Or@2:9 [Reference@2:9 a] [Reference@2:14 b]] [Reference@2:20 c]]"},
      {"((a or (b))) and c", "[And@2:10 [Or@2:10 [Reference@2:10 a] [Reference@2:16 b]] [Reference@2:25 c]]"},
      {"a and b and c or d and e", "[Or@2:8 [And@2:8 [Reference@2:8 a] [Reference@2:14 b] [Reference@2:20 "
                                   "c]] [And@2:25 [Reference@2:25 d] [Reference@2:31 e]]]"},
      {"a or (b and (c or d)) or e", "[Or@2:8 [Reference@2:8 a] [And@2:14 [Reference@2:14 b] [Or@2:21 "
                                     "[Reference@2:21 c] [Reference@2:26 d]]] [Reference@2:33 e]]"},
      {"not not a and b", "[And@2:8 [Not@2:8 [Not@2:12 [Reference@2:16 a]]] [Reference@2:22 b]]"},
      {"(not a) == true", "[Compare@2:9 == [Not@2:9 [Reference@2:13 a]] [Literal@2:19 Boolean true]]"},
      {"a.b >= (c < d)",
       "[Compare@2:8 >= [Reference@2:8 a.b] [Compare@2:16 < [Reference@2:16 c] [Reference@2:20 d]]]"},
      {"and", "[Literal@2:8 Identifier and]"},
      {"f(a, b: (g(c) and d), not e) != \"t\"",
       "[Compare@2:8 != [Call@2:8 f [Reference@2:10 a] b: [And@2:17 [Call@2:17 g [Reference@2:19 c]] "
       "[Reference@2:26 d]] [Not@2:30 [Reference@2:34 e]]] [Literal@2:40 Text \"t\"]]"},
  };
  for (const auto& [text, dump] : cases) EXPECT_EQ(dumpExpr(parsedExpr(text)), dump) << text;
}

TEST(ParseDocument, PlacesCommentsAmongTheSteps) {
  const std::pair<const char*, const char*> cases[] = {
      {"call a\n# c\ncall b", "Call@2:1 name=a\nComment@3:0 comment=<c>\nCall@4:1 name=b\n"},
      {"/* c */ call /* d */ a", "Call@2:9 name=a\nComment@2:0 comment=<c>\nComment@2:0 comment=<d>\n"},
      {"if a { # c\n# d\n}\n# e", // inside a block first and last, and behind it
       "If@2:1 condition=[Reference@2:4 a]\n  Comment@2:0 comment=<c>\n  Comment@3:0 comment=<d>\n"
       "Comment@5:0 comment=<e>\n"},
      {"if a {\n}\n# c\nelse {\ncall b }",
       "If@2:1 condition=[Reference@2:4 a]\nElse\n  Comment@4:0 comment=<c>\n  Call@6:1 name=b\n"},
      {"/* a\n\n  b\t\n*/", "Comment@2:0 comment=<a>\nComment@2:0 comment=<>\nComment@2:0 comment=<b>\n"},
      {"#\n# \n//\n/**/", ""},
      {"#  \n# \r", "Comment@2:0 comment=<>\nComment@3:0 comment=<>\n"},
      {"#\t c  d \t\n/*\t e*/\n", "Comment@2:0 comment=<c  d>\nComment@3:0 comment=<e>\n"},
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

} // namespace
} // namespace Zamt
