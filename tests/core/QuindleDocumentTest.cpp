#include "quindle/core/QuindleDocument.h"

#include "tests/support/dumpDocument.h"

#include <gtest/gtest.h>

#include <clocale>
#include <cmath>

namespace Zamt {
namespace {

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

TEST(QuindleValue, PrintsWhatReadsBackEqualInEveryLocale) {
  const std::pair<double, const char*> cases[] = {
      {3, "3"},           {1e14, "100000000000000"},          {1e15, "1e+15"},    {-0.0, "-0"},
      {5e-324, "5e-324"}, {0.1 + 0.2, "0.30000000000000004"}, {1.0 / 0.0, "inf"}, {std::nan(""), "nan"},
  };
  for (const char* locale : {"C", "de_DE.UTF-8"}) {
    std::setlocale(LC_ALL, locale);
    for (const auto& [value, text] : cases) EXPECT_EQ(QuindleValue::number(value).toSource(), text) << locale;
  }
  std::setlocale(LC_ALL, "C");
  QuindleValue value = QuindleValue::number(1.5);
  value.textValue = "1.50";
  EXPECT_EQ(value.toSource(), "1.50") << "a number from a file keeps its spelling";
  EXPECT_EQ(QuindleValue::text("a\"b\\c\nd\te\r\xc3\xa4").toSource(), "\"a\\\"b\\\\c\\nd\\te\r\xc3\xa4\"");
}

/// The record after every way to copy and to move one.
template <class Record>
Record copiedAndMoved(const Record& record) {
  Record copy(record);
  Record moved(std::move(copy));
  Record target;
  target = moved;
  moved = Record();
  moved = std::move(target);
  return moved;
}

TEST(QuindleDocument, CopiesAndMovesOfARecordKeepEveryField) {
  QuindleValue value;
  value.kind = QuindleValue::Kind::Tuple;
  value.items = {QuindleValue::boolean(true), QuindleValue::number(2), QuindleValue::identifier("w")};
  value.items[1].textValue = "2.0";
  EXPECT_EQ(Testing::dumpValue(copiedAndMoved(value)), "Tuple (true, 2.0, w)");
  EXPECT_EQ(Testing::dumpValue(copiedAndMoved(value.items[1])), "Number 2.0 (2)");

  QuindleExpr expr = node(Kind::Call, {reference("a"), node(Kind::Not, {reference("b")})});
  expr.name = "f";
  expr.op = "<";
  expr.value = value;
  expr.argNames = {"", "n"};
  expr.line = expr.operands[1].operands[0].line = 3;
  expr.column = expr.operands[1].operands[0].column = 4;
  const std::string exprDump =
      "[Call@3:4 Tuple (true, 2.0, w) f < [Reference@0:0 a] n: [Not@0:0 [Reference@3:4 b]]]";
  EXPECT_EQ(Testing::dumpExpr(copiedAndMoved(expr)), exprDump);

  QuindleStep step;
  step.kind = QuindleStep::Kind::If;
  step.name = "n";
  step.source = "s";
  step.value = expr;
  step.condition = reference("c");
  step.args = {reference("x")};
  step.argNames = {"y"};
  step.color = QuindleValue::text("red");
  step.classNumber = QuindleValue::number(7);
  step.comment = "why";
  step.line = 5;
  step.column = 6;
  const std::string stepDump = "If@5:6 name=n source=s value=" + exprDump +
                               " condition=[Reference@0:0 c] arg=y:[Reference@0:0 x] as=Number 7 "
                               "color=Text \"red\" comment=<why>\n";
  step.body = {QuindleStep(step)};
  step.elseBody = {step.body[0]};
  EXPECT_EQ(Testing::dumpSteps({copiedAndMoved(step)}), stepDump + "  " + stepDump + "Else\n  " + stepDump);
}

TEST(QuindleDocument, ValuesExpressionsAndStepsTakeTheValueOfTheirOwnMembers) {
  QuindleValue value;
  value.kind = QuindleValue::Kind::Tuple;
  value.items = {QuindleValue::boolean(false), value};
  value.items[1].items = {QuindleValue::number(1), QuindleValue::identifier("w")};
  value = value.items[1];
  EXPECT_EQ(value.toSource(), "(1, w)");
  value = std::move(value.items[0]);
  EXPECT_EQ(value.toSource(), "1");

  QuindleExpr expr = node(Kind::And, {node(Kind::Not, {reference("a")}), reference("b")});
  expr = expr.operands[0];
  EXPECT_EQ(expr.toSource(), "not a");
  expr = std::move(expr.operands[0]);
  EXPECT_EQ(expr.toSource(), "a");

  QuindleStep step;
  step.kind = QuindleStep::Kind::Run;
  step.args = {reference("x")};
  step.argNames = {"n"};
  QuindleStep inner;
  inner.kind = QuindleStep::Kind::If;
  inner.elseBody = {step};
  step.body = {step, inner};
  step = step.body[1];
  EXPECT_EQ(Testing::dumpSteps({step}), "If@0:0\nElse\n  Run@0:0 arg=n:[Reference@0:0 x]\n");
  step = std::move(step.elseBody[0]);
  EXPECT_EQ(Testing::dumpSteps({step}), "Run@0:0 arg=n:[Reference@0:0 x]\n");
}

TEST(QuindleDocument, RunsTheFirstRunTriggerElseTheFirstKeyTriggerElseNone) {
  using Trigger = QuindleTrigger::Kind;
  const auto chosen = [](const std::vector<Trigger>& kinds) {
    QuindleDocument doc;
    for (const Trigger kind : kinds) doc.triggers.emplace_back().kind = kind;
    return doc.runTrigger() ? doc.runTrigger() - doc.triggers.data() : -1;
  };
  EXPECT_EQ(chosen({Trigger::Load, Trigger::TileEnter}), -1);
  EXPECT_EQ(chosen({Trigger::Load, Trigger::Key, Trigger::Key}), 1);
  EXPECT_EQ(chosen({Trigger::Key, Trigger::Run, Trigger::Run}), 1);
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
  QuindleDocument copy = doc;
  copy.touch();
  EXPECT_EQ(called, "1@1 2 1@2 new ") << "listeners are copied";
  EXPECT_EQ(doc.revision, 1U);
  EXPECT_GT(doc.addListener([](const QuindleDocument&) {}), second + 1) << "no number is given twice";
}

} // namespace
} // namespace Zamt
