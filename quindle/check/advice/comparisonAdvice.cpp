#include "quindle/check/advice/comparisonAdvice.h"

#include "quindle/core/Numbers.h"
#include "quindle/core/PointVocabulary.h"

#include <algorithm>
#include <cmath>
#include <string>

namespace Zamt {

namespace {

using Kind = QuindleExpr::Kind;

/// Null where a value next to the end is no different in kind, and for unknown fields.
const QuindleField* fieldOfNumbers(const std::string& name) {
  const std::vector<QuindleField>& fields = knownQuindleFields();
  const auto found = std::find_if(fields.begin(), fields.end(), [&](const QuindleField& field) {
    return field.name == name && field.values != QuindleField::Values::Measure;
  });
  return found == fields.end() ? nullptr : &*found;
}

/// The comparison that leaves the end out; the one with the end alone where nothing would be left.
std::string withoutEnd(const QuindleExpr& compare, const QuindleField& field, double end) {
  const bool below = compare.op == "<";
  const double next = below ? end - 1 : end + 1;
  if (next < field.minimum || next > field.maximum) return field.name + " == " + printNumber(end);
  return field.name + (below ? " <= " : " >= ") + printNumber(next);
}

void adviseOnEnd(const QuindleExpr& compare, Advisor& advisor) {
  if (compare.op != "<" && compare.op != ">") return;
  const QuindleExpr& right = compare.operands[1];
  const QuindleField* const field = fieldOfNumbers(compare.operands[0].name);
  if (!field || right.kind != Kind::Literal) return;
  const double end = right.value.numberValue;
  if (std::floor(end) != end || end < field->minimum || end > field->maximum) return;
  advisor.warn(compare, compare.toSource() + " holds for " + printNumber(end) +
                            " too, since the range that a comparison sets includes its end. Write " +
                            withoutEnd(compare, *field, end) + " if that is not meant.");
}

} // namespace

void adviseOnComparison(const QuindleExpr& compare, Advisor& advisor) {
  if (compare.kind != Kind::Compare || compare.operands.size() != 2) return;
  const QuindleExpr& left = compare.operands[0];
  if (left.kind == Kind::Reference && advisor.findParam(left.name))
    advisor.warn(left, inQuotes(left.name) +
                           " on the left of a comparison is a field of the data, not the parameter of that "
                           "name. Write a field there, as in \"Intensity " +
                           compare.op + ' ' + left.name + "\", or ask about the parameter with \"if " +
                           compare.toSource() + " { ... }\".");
  adviseOnEnd(compare, advisor);
}

} // namespace Zamt
