#include "quindle/plan/evaluateQuindleExpr.h"

#include "tests/plan/planText.h"

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

TEST(evaluateQuindleExpr, WorksOutValuesOrSaysWhyNot) {
  const struct {
    const char* expression;
    std::string outcome;
  } cases[] = {
      {"both", "\"let\""},
      {"limit", "8"},
      {"word > 5", "true"},
      {"given", "0.5"},
      {"metres", "\"0.5m\""},
      {"hex", "16"},
      {"2 < 3 and nothing", "t.quindle:5:11: error: \"nothing\" has no value here. It is neither a parameter "
                            "of this Quindle nor set by an earlier \"let\"."},
      {"3 < 2 and nothing", "false"},
      {"3 or nothing", "true"},
      {"0 or \"\" or false", "false"},
      {"not (1 and not (0 or 2))", "true"},
      {"region", "t.quindle:5:1: error: The parameter \"region\" takes its value from the application, and "
                 "none was supplied for this run."},
      {"bare", "t.quindle:5:1: error: No value for the parameter \"bare\", and it has no default."},
      {"(1 < class(\"Ground\")) or 1",
       "t.quindle:5:6: error: \"class\" cannot be worked out here: a \"let\" or an \"if\" is decided before "
       "the data is touched, and this needs the data."},
      {"limit == \"a\"", "t.quindle:5:1: error: A number cannot be compared with something that is not one."},
      {"nan == 1", "true"},
      {"nan != 1", "false"},
      {"nan <= 1", "false"},
      {"\"B\" >= \"a\"", "false"},
      {"\"a\" < \"ab\"", "true"},
      {"\"\xc3\xa4\" > \"z\"", "true"},
      {"flag == false", "false"},
      {"rgb != flag", "true"},
  };
  for (const auto& [expression, result] : cases)
    EXPECT_EQ(outcome(Testing::expressionOf(expression)), result) << expression;
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
