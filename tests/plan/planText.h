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

} // namespace Zamt::Testing
