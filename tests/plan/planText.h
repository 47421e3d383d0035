#pragma once

#include "quindle/plan/QuindlePlanNode.h"
#include "tests/support/parsed.h"

#include <string>

namespace Zamt::Testing {

/// A Quindle that declares `params` (whole lines) and runs `steps`.
inline QuindleDocument documentOf(const std::string& steps, const std::string& params = {}) {
  return parsed("quindle \"T\" {\n" + params + "\non run {\n" + steps + "\n}\n}", "t.quindle");
}

/// An expression as it stands in a "select", its first byte at column 1.
inline QuindleExpr expressionOf(const std::string& text) {
  return documentOf("select\n" + text).triggers.at(0).steps.at(0).condition;
}

/// A plan that has to come out well.
inline QuindlePlanNode planOf(const std::string& text) {
  QuindlePlanNode plan;
  Diag diag;
  EXPECT_TRUE(planPredicate(expressionOf(text), plan, diag, "t")) << diag.format();
  return plan;
}

inline QuindleExpr junction(QuindleExpr::Kind kind, std::vector<QuindleExpr> operands) {
  QuindleExpr made;
  made.kind = kind;
  made.operands = std::move(operands);
  return made;
}

constexpr int deep = 1000000;

/// A million levels of not, and, or around the condition vertical(), each level with one operand, so that
/// neither kind of junction is ever flattened away by the text's shape but by the planner alone.
inline QuindleExpr deepChain() {
  QuindleExpr expr;
  expr.kind = QuindleExpr::Kind::Call;
  expr.name = "vertical";
  constexpr QuindleExpr::Kind kinds[] = {QuindleExpr::Kind::And, QuindleExpr::Kind::Or,
                                         QuindleExpr::Kind::Not};
  for (int level = 0; level < deep; ++level) {
    std::vector<QuindleExpr> operands;
    operands.push_back(std::move(expr));
    expr = junction(kinds[level % 3], std::move(operands));
  }
  return expr;
}

} // namespace Zamt::Testing
