#pragma once

#include "quindle/text/parseQuindle.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

namespace Zamt::Testing {

/// The document that `text` holds. The test fails if it has errors; warnings are let pass.
inline QuindleDocument parsed(const std::string& text, const std::string& file = "test.quindle") {
  QuindleDocument doc;
  Diag diag;
  EXPECT_TRUE(parseQuindle(text, file, doc, diag)) << diag.format();
  return doc;
}

/// A document that runs `steps`. `head` stands in front of the trigger: settings and parameters. The steps
/// begin on line 2 if `head` holds no line end.
inline QuindleDocument parsedRun(const std::string& steps, const std::string& head = {}) {
  return parsed("quindle \"Test\" { " + head + " on run {\n" + steps + "\n} }");
}

inline std::vector<QuindleStep> parsedSteps(const std::string& steps) {
  QuindleDocument doc = parsedRun(steps);
  return doc.triggers.empty() ? std::vector<QuindleStep>() : std::move(doc.triggers[0].steps);
}

inline QuindleExpr parsedExpr(const std::string& expression) {
  std::vector<QuindleStep> steps = parsedSteps("select " + expression);
  EXPECT_EQ(steps.size(), 1U) << expression;
  return steps.empty() ? QuindleExpr() : std::move(steps[0].condition);
}

} // namespace Zamt::Testing
