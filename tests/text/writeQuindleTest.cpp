#include "quindle/text/writeQuindle.h"

#include "tests/support/dumpDocument.h"
#include "tests/support/parsed.h"
#include "tests/support/smallStack.h"
#include "tests/text/randomText.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace Zamt {
namespace {

using Testing::dumpDocument;
using Testing::onSmallStack;
using Testing::parsed;
using Testing::parsedRun;
using Testing::Positions;
using Testing::repeated;

void expectReadsBack(const QuindleDocument& doc) {
  const std::string written = writeQuindle(doc);
  const QuindleDocument again = parsed(written, doc.sourceFile);
  EXPECT_EQ(dumpDocument(again, Positions::LeftOut), dumpDocument(doc, Positions::LeftOut)) << written;
  EXPECT_EQ(writeQuindle(again), written);
}

/// The steps as they are written, without their trigger and its indents.
std::string written(const QuindleDocument& doc) {
  const std::string text = writeQuindle(doc);
  const std::string before = "quindle \"Test\" {\n    on run {\n";
  const std::string behind = "    }\n}\n";
  EXPECT_TRUE(text.starts_with(before) && text.ends_with(behind)) << text;
  return text.substr(before.size(), text.size() - before.size() - behind.size());
}

/// A text, and what it is written as.
using Case = std::pair<const char*, const char*>;

TEST(WriteQuindle, LaysOutTheFile) {
  const Case cases[] = {
      {"quindle \"\" { }", "quindle \"\" {\n}\n"},
      {"quindle \"a \\\"b\\\"\" { enabled true description \"\" category \"c\" }",
       "quindle \"a \\\"b\\\"\" {\n    category \"c\"\n}\n"},
      {"quindle \"a\" { description \"d\" on load { } }",
       "quindle \"a\" {\n    description \"d\"\n\n    on load {\n    }\n}\n"},
      {"quindle \"a\" { on load { } param t : Text }",
       "quindle \"a\" {\n    param t : Text\n\n    on load {\n    }\n}\n"},
      {"quindle \"a\" { description \"old\" enabled false tags \"t\", \"\" tags \"u\" version \"1\" author "
       "\"me\" shortcut \"U\" "
       "icon \"i\"\ncategory \"c\" on key \"\" { } description \"d\"\r\non tile.enter{}\n"
       "param n:Number=2[0..5]\"how many\" param a : Grid = active param b : Region = brush\n"
       "param p : Surface = pick param c : Class = Ground param s : T.u = (1, (), --.50, \"x\") on load { } "
       "}",
       "quindle \"a\" {\n"
       "    description \"d\"\n"
       "    category \"c\"\n"
       "    icon \"i\"\n"
       "    shortcut \"U\"\n"
       "    author \"me\"\n"
       "    version \"1\"\n"
       "    tags \"t\", \"\", \"u\"\n"
       "    enabled false\n"
       "\n"
       "    param n : Number = 2 [0 .. 5] \"how many\"\n"
       "    param a : Grid = active\n"
       "    param b : Region = brush\n"
       "    param p : Surface = pick\n"
       "    param c : Class = Ground\n"
       "    param s : T.u = (1, (), --.50, \"x\")\n"
       "\n"
       "    on key \"\" {\n    }\n"
       "\n"
       "    on tile.enter {\n    }\n"
       "\n"
       "    on load {\n    }\n"
       "}\n"},
  };
  for (const auto& [text, expected] : cases) {
    const QuindleDocument doc = parsed(text);
    EXPECT_EQ(writeQuindle(doc), expected);
    expectReadsBack(doc);
  }
}

TEST(WriteQuindle, LaysOutSteps) {
  const Case cases[] = {
      {"let x=1e-3 create b=\"C/I\"", "        let x = 1e-3\n        create b = \"C/I\"\n"},
      {"select and < not let x = or or or", "        select and < not\n        let x = or or or\n"},
      {"classify into \"G\" as 2 colour (0.20, 1)", "        classify into \"G\" as 2 color (0.20, 1)\n"},
      {"classify into as as color color red", "        classify into as as color color red\n"},
      {"set a.b = \"x\\r\\q\\\n\" connect a.b<-c",
       "        set a.b = \"xrq\\n\"\n        connect a.b <- c\n"},
      {"call a.\"b_2\" call x call a.\"b c\"(y:1,z)",
       "        call a.b_2()\n        call x()\n        call a.\"b c\"(y: 1, z)\n"},
      {"call a.\"b\" call a.\"b.c d\" call a.\"b c.d\" call a.\"b c.\"",
       "        call a.b()\n        call a.b.\"c d\"()\n        call a.\"b c.d\"()\n        call a.\"b "
       "c.\"()\n"},
      {"run \"O p\"(f(a:(1),not b)) report \"\t{n}\r\"",
       "        run \"O p\"(f(a: 1, not b))\n        report \"\\t{n}\r\"\n"},
      {"if a { } else { } if b { select c } else { if d { } else { # e\n } }",
       "        if a {\n        }\n"
       "        if b {\n            select c\n        }\n"
       "        else {\n            if d {\n            }\n            else {\n                # e\n"
       "            }\n        }\n"},
      {"for each i in f(x) { // c\n for each j in i { report \"\" } } // d\n",
       "        for each i in f(x) {\n            # c\n            for each j in i {\n"
       "                report \"\"\n            }\n        }\n        # d\n"},
  };
  for (const auto& [text, expected] : cases) {
    const QuindleDocument doc = parsedRun(text);
    EXPECT_EQ(written(doc), expected);
    expectReadsBack(doc);
  }
}

TEST(WriteQuindle, LosesOnlyTheEmptyCommentsAndTheNestingThatTheLayoutDoesNotKeep) {
  const QuindleDocument doc = parsedRun("/* a\n\nb */ select (a and b) and (c or (d or e))");
  EXPECT_EQ(written(doc), "        # a\n        # \n        # b\n        select a and b and (c or d or e)\n");
  const QuindleDocument again = parsed(writeQuindle(doc));
  EXPECT_EQ(written(again), "        # a\n        # b\n        select a and b and (c or d or e)\n");
  expectReadsBack(again);
}

TEST(WriteQuindle, TakesDocumentsThatNoTextGives) {
  QuindleDocument doc = parsedRun("set a.b = 1");
  QuindleStep step = doc.triggers[0].steps[0];
  step.kind = QuindleStep::Kind::Unparsed;
  step.name = "no word";
  step.value.value = QuindleValue::number(0.1);
  step.body = doc.triggers[0].steps;
  doc.triggers[0].steps.push_back(step);
  step.kind = QuindleStep::Kind::Call;
  step.name = "no word.b c";
  step.args = {step.value, step.value};
  step.argNames = {"n"};
  doc.triggers[0].steps.push_back(step);
  step.kind = QuindleStep::Kind::Comment;
  step.comment = "one\n}\n";
  doc.triggers[0].steps.push_back(step);
  EXPECT_EQ(written(doc), "        set a.b = 1\n        set no word = 0.1\n"
                          "        call no word.\"b c\"(n: 0.1, 0.1)\n        # one\n        # }\n");
}

TEST(WriteQuindle, WritesARangeWithOneBound) {
  for (const auto& [bound, written] :
       {std::pair(&QuindleParam::minimum, "[2 .. ]"), std::pair(&QuindleParam::maximum, "[ .. 2]")}) {
    QuindleDocument doc;
    doc.params.emplace_back().*bound = QuindleValue::number(2);
    EXPECT_THAT(writeQuindle(doc), testing::HasSubstr(written));
  }
}

TEST(WriteQuindle, KeepsRandomDocuments) {
  constexpr unsigned documents = 2000;
  for (unsigned seed = 0; seed < documents && !testing::Test::HasFailure(); ++seed) {
    SCOPED_TRACE(seed);
    expectReadsBack(parsed(Testing::RandomText::make(seed)));
  }
}

TEST(WriteQuindle, WritesNestedBlocksWithoutRecursion) {
  constexpr std::size_t levels = 1000;
  const std::string text =
      repeated("if a { for each b in c { } } else { ", levels) + "select d" + repeated(" }", levels);
  onSmallStack([&] { expectReadsBack(parsedRun(text)); }, Testing::tinyStackBytes);
}

TEST(WriteQuindle, WritesAMillionSteps) {
  constexpr std::size_t many = 1'000'000;
  EXPECT_EQ(writeQuindle(parsedRun(repeated("let a = b ", many))).size(), 38 + many * 18);
}

} // namespace
} // namespace Zamt
