#include "quindle/text/writeQuindle.h"

#include "tests/support/dumpDocument.h"
#include "tests/support/goldenCases.h"
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

TEST(WriteQuindle, WritesTheLayoutOfTheGoldenDocumentAndReadsItBack) {
  Testing::expectCases("text/golden/layout.md", [](const std::string& text) {
    const QuindleDocument doc = parsed(text);
    expectReadsBack(doc);
    return writeQuindle(doc);
  });
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
