#include "quindle/core/QuindleDocument.h"

#include "tests/support/dumpDocument.h"

#include <gtest/gtest.h>

#include <clocale>
#include <limits>

namespace Zamt {
namespace {

using Testing::dumpExpr;
using Kind = QuindleExpr::Kind;

QuindleExpr node(Kind kind, std::vector<QuindleExpr> operands) {
  QuindleExpr expr;
  expr.kind = kind;
  expr.operands = std::move(operands);
  return expr;
}

QuindleExpr reference(const std::string& name) {
  QuindleExpr expr = node(Kind::Reference, {});
  expr.name = name;
  return expr;
}

void expectNumbersPrintShortest() {
  struct Case {
    double value;
    const char* text;
  };
  const Case cases[] = {
      {0.1, "0.1"},
      {3, "3"},
      {1e14, "100000000000000"},
      {1e15, "1e+15"},
      {-0.0, "-0"},
      {-2.5, "-2.5"},
      {0.1 + 0.2, "0.30000000000000004"},
      {5e-324, "5e-324"},
      {1.7976931348623157e308, "1.7976931348623157e+308"},
      {std::numeric_limits<double>::infinity(), "inf"},
      {std::numeric_limits<double>::quiet_NaN(), "nan"},
  };
  for (const Case& c : cases) EXPECT_EQ(QuindleValue::number(c.value).toSource(), c.text);
}

TEST(QuindleValue, PrintsTheShortestNumberThatReadsBackEqual) { expectNumbersPrintShortest(); }

TEST(QuindleValue, PrintsNumbersTheSameUnderALocaleWithDecimalCommas) {
  const std::string before = std::setlocale(LC_ALL, nullptr);
  if (!std::setlocale(LC_ALL, "de_DE.UTF-8")) GTEST_SKIP() << "The locale de_DE.UTF-8 is not installed.";
  expectNumbersPrintShortest();
  std::setlocale(LC_ALL, before.c_str());
}

TEST(QuindleValue, PrintsANumberFromAFileInItsOwnSpelling) {
  QuindleValue value = QuindleValue::number(1.5);
  value.textValue = "1.50";
  EXPECT_EQ(value.toSource(), "1.50");
}

TEST(QuindleValue, EscapesFourBytesAndNoOthers) {
  EXPECT_EQ(QuindleValue::text("a\"b\\c\nd\te\r\x01\xc3\xa4").toSource(),
            "\"a\\\"b\\\\c\\nd\\te\r\x01\xc3\xa4\"");
}

TEST(QuindleValue, TakesTheValueOfItsOwnMember) {
  QuindleValue tuple;
  tuple.kind = QuindleValue::Kind::Tuple;
  QuindleValue inner = tuple;
  inner.items = {QuindleValue::number(1), QuindleValue::identifier("w")};
  tuple.items = {QuindleValue::boolean(false), inner};
  EXPECT_EQ(tuple.toSource(), "(false, (1, w))");
  QuindleValue copied = tuple;
  copied = copied.items[1];
  EXPECT_EQ(copied.toSource(), "(1, w)");
  copied = std::move(copied.items[0]);
  EXPECT_EQ(copied.toSource(), "1");
  EXPECT_EQ(tuple.toSource(), "(false, (1, w))");
}

TEST(QuindleExpr, WrapsExactlyTheOperandsThatNeedIt) {
  struct Case {
    Kind outer;
    Kind inner;
    const char* text;
  };
  const Case cases[] = {
      {Kind::And, Kind::Or, "(a or b) and c"},       {Kind::And, Kind::And, "a and b and c"},
      {Kind::And, Kind::Not, "not a and c"},         {Kind::And, Kind::Compare, "a < b and c"},
      {Kind::Or, Kind::And, "a and b or c"},         {Kind::Or, Kind::Or, "a or b or c"},
      {Kind::Or, Kind::Compare, "a < b or c"},       {Kind::Not, Kind::Or, "not (a or b)"},
      {Kind::Not, Kind::And, "not (a and b)"},       {Kind::Not, Kind::Compare, "not (a < b)"},
      {Kind::Not, Kind::Not, "not not a"},           {Kind::Compare, Kind::Or, "(a or b) < c"},
      {Kind::Compare, Kind::And, "(a and b) < c"},   {Kind::Compare, Kind::Not, "(not a) < c"},
      {Kind::Compare, Kind::Compare, "(a < b) < c"}, {Kind::Call, Kind::Or, "(a or b, c)"},
  };
  for (const Case& c : cases) {
    QuindleExpr inner = node(c.inner, {reference("a"), reference("b")});
    inner.op = "<";
    QuindleExpr outer = node(c.outer, {inner, reference("c")});
    outer.op = "<";
    EXPECT_EQ(outer.toSource(), c.text);
  }
}

TEST(QuindleExpr, PrintsNodesThatLackOperandsWithoutThem) {
  EXPECT_EQ(node(Kind::Not, {}).toSource(), "not");
  EXPECT_EQ(node(Kind::Compare, {reference("a")}).toSource(), "");
  EXPECT_EQ(QuindleExpr().toSource(), "");
  QuindleExpr call = node(Kind::Call, {reference("x"), reference("y"), reference("z")});
  call.name = "f";
  call.argNames = {"", "b"};
  EXPECT_EQ(call.toSource(), "f(x, b: y, z)");
}

TEST(QuindleExpr, TakesTheValueOfItsOwnOperand) {
  QuindleExpr expr = node(Kind::And, {node(Kind::Not, {reference("a")}), reference("b")});
  expr = expr.operands[0];
  EXPECT_EQ(expr.toSource(), "not a");
  expr = std::move(expr.operands[0]);
  EXPECT_EQ(dumpExpr(expr), "[Reference@0:0 a]");
}

TEST(QuindleStep, TakesTheValueOfAStepOfItsOwnBlocks) {
  QuindleStep leaf;
  leaf.kind = QuindleStep::Kind::Run;
  leaf.name = "leaf";
  leaf.args = {reference("x")};
  leaf.argNames = {"n"};
  QuindleStep inner;
  inner.kind = QuindleStep::Kind::If;
  inner.elseBody = {leaf};
  QuindleStep step;
  step.kind = QuindleStep::Kind::ForEach;
  step.body = {leaf, inner};
  step = step.body[1];
  EXPECT_EQ(Testing::dumpSteps({step}), "If@0:0\nElse\n  Run@0:0 name=leaf arg=n:[Reference@0:0 x]\n");
  step = std::move(step.elseBody[0]);
  EXPECT_EQ(Testing::dumpSteps({step}), "Run@0:0 name=leaf arg=n:[Reference@0:0 x]\n");
}

TEST(QuindleDocument, RunsTheFirstRunTriggerElseTheFirstKeyTriggerElseNone) {
  using Trigger = QuindleTrigger::Kind;
  QuindleDocument doc;
  doc.triggers.resize(2);
  doc.triggers[0].kind = Trigger::Load;
  doc.triggers[1].kind = Trigger::TileEnter;
  EXPECT_EQ(doc.runTrigger(), nullptr);
  doc.triggers.resize(4);
  doc.triggers[2].kind = doc.triggers[3].kind = Trigger::Key;
  EXPECT_EQ(doc.runTrigger(), &doc.triggers[2]);
  doc.triggers[3].kind = Trigger::Run;
  EXPECT_EQ(doc.runTrigger(), &doc.triggers[3]);
}

TEST(QuindleDocument, FindsTheFirstParameterOfExactlyThatName) {
  QuindleDocument doc;
  doc.params.resize(3);
  doc.params[0].name = "A";
  doc.params[1].name = doc.params[2].name = "a";
  EXPECT_EQ(doc.findParam("a"), &doc.params[1]);
  EXPECT_EQ(doc.findParam("b"), nullptr);
}

TEST(QuindleDocument, CallsThoseListenersThatWereThereWhenItWasTouched) {
  QuindleDocument doc;
  std::string called;
  int second = 0;
  EXPECT_EQ(doc.addListener([&](const QuindleDocument& touched) {
    called += "1@" + std::to_string(touched.revision) + ' ';
    doc.removeListener(second);
    doc.addListener([&](const QuindleDocument&) { called += "new "; });
  }),
            1);
  second = doc.addListener([&](const QuindleDocument&) { called += "2 "; });
  doc.addListener(nullptr);
  doc.removeListener(77);
  doc.touch();
  EXPECT_EQ(called, "1@1 2 ");
  doc.touch();
  EXPECT_EQ(called, "1@1 2 1@2 new ");
}

TEST(QuindleDocument, GivesNoListenerNumberTwiceAndCopiesListeners) {
  QuindleDocument doc;
  const QuindleDocument* touched = nullptr;
  doc.addListener([&](const QuindleDocument& it) { touched = &it; });
  doc.removeListener(doc.addListener([](const QuindleDocument&) {}));
  EXPECT_EQ(doc.addListener([](const QuindleDocument&) {}), 3);
  QuindleDocument copy = doc;
  copy.touch();
  EXPECT_EQ(touched, &copy);
  EXPECT_EQ(copy.nextListenerId, 4);
  EXPECT_EQ(doc.revision, 0U);
}

TEST(quindleIdentifier, ReplacesEveryOtherByte) {
  EXPECT_EQ(quindleIdentifier("Underwater Ground"), "Underwater_Ground");
  EXPECT_EQ(quindleIdentifier("a\xc3\xa4.9_-"), "a___9__");
  EXPECT_EQ(quindleIdentifier(""), "");
}

} // namespace
} // namespace Zamt
