#include "quindle/plan/evaluateQuindleExpr.h"

#include "tests/plan/planText.h"
#include "tests/support/goldenCases.h"

namespace Zamt {
namespace {

const QuindleDocument& document() {
  static const QuindleDocument made =
      Testing::documentOf("report \"x\"", "param limit : Number = 5\nparam word : Text = \"abc\"\n"
                                          "param region : Region = brush\nparam bare : Number\n"
                                          "param rgb : Text = (1, 0, 0)\nparam flag : Text = true\n");
  return made;
}

const std::map<std::string, std::string> supplied{{"given", "0.50"}, {"metres", "0.5m"}, {"empty", ""},
                                                  {"word", "7"},     {"nan", "nan"},     {"both", "1"},
                                                  {"hex", "0X10"}};

const std::map<std::string, QuindleValue>& lets() {
  static const std::map<std::string, QuindleValue> made{{"both", QuindleValue::text("let")},
                                                        {"limit", QuindleValue::number(8)}};
  return made;
}

/// The value as source text, or the faults.
std::string outcome(const QuindleExpr& expr) {
  QuindleValue value;
  Diag diag;
  if (!evaluateQuindleExpr(expr, document(), supplied, lets(), value, diag)) return diag.format();
  EXPECT_EQ(diag.format(), "");
  return value.toSource();
}

TEST(evaluateQuindleExpr, WorksOutTheValuesOfTheGoldenDocumentOrSaysWhyNot) {
  Testing::expectCases("plan/golden/values.md", [](const std::string& expression) {
    return outcome(Testing::expressionOf(expression));
  });
}

TEST(evaluateQuindleExpr, RefusesTreesThatNoTextGives) {
  EXPECT_EQ(outcome({}), "t.quindle: error: There is nothing to work out here.");
  QuindleExpr compare = Testing::expressionOf("1 < 2");
  compare.op = "=";
  EXPECT_EQ(outcome(compare), "t.quindle:5:1: error: \"=\" is not a comparison.");
  compare.operands.pop_back();
  EXPECT_EQ(outcome(compare), "");
  using Kind = QuindleExpr::Kind;
  for (const auto& [kind, worth] : {std::pair{Kind::And, "true"}, {Kind::Or, "false"}, {Kind::Not, ""}}) {
    QuindleExpr empty;
    empty.kind = kind;
    EXPECT_EQ(outcome(empty), worth);
  }
}

TEST(evaluateQuindleCondition, TakesTextsForTrueWhateverTheySay) {
  const auto truthOf = [](const char* expression, bool before) {
    Diag diag;
    evaluateQuindleCondition(Testing::expressionOf(expression), document(), supplied, lets(), before, diag);
    return before;
  };
  for (const char* text : {"\"false\"", "\"0\"", "-0.1", "rgb"}) EXPECT_TRUE(truthOf(text, false)) << text;
  for (const char* text : {"0", "empty"}) EXPECT_FALSE(truthOf(text, true)) << text;
  EXPECT_TRUE(truthOf("bare", true)) << "a failure leaves it";
}

} // namespace
} // namespace Zamt
