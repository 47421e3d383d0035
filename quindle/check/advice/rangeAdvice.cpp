#include "quindle/check/advice/rangeAdvice.h"

#include "quindle/core/AsciiText.h"
#include "quindle/core/Numbers.h"
#include "quindle/core/PointVocabulary.h"

#include <algorithm>
#include <limits>
#include <string>

namespace Zamt {

namespace {

using Kind = QuindleExpr::Kind;

constexpr std::size_t minimumAt = 1; // of both conditions that have a range, like `maximumAt`
constexpr std::size_t maximumAt = 2;

/// Whether an argument of a call was given rather than filled in.
bool isGiven(const QuindleExpr& call, const QuindlePlanNode& plan, std::size_t index) {
  const std::string& name = plan.operation->params[index].name;
  std::size_t positional = 0;
  for (std::size_t i = 0; i < call.operands.size(); ++i) {
    const bool isNamed = i < call.argNames.size() && !call.argNames[i].empty();
    if (isNamed ? call.argNames[i] == name : positional++ == index) return true;
  }
  return false;
}

/// One end of the range of a call.
struct End {
  const QuindleExpr& argument;
  bool given;
  std::optional<double> value; ///< As far as it is known before a run.
};

/// The values that there are to keep.
struct Whole {
  double minimum;
  double maximum;
};

/// Of a count of neighbours, and of a field as far as it is known.
Whole wholeOf(const QuindlePlanNode& plan) {
  constexpr double infinity = std::numeric_limits<double>::infinity();
  if (plan.operation->name == "neighbours") return {0, infinity};
  const std::vector<QuindleField>& fields = knownQuindleFields();
  const std::string& name = plan.arguments.front().value.textValue;
  const auto found =
      std::find_if(fields.begin(), fields.end(), [&](const auto& field) { return field.name == name; });
  // Of an unknown field the defaults may well be all that it has.
  if (found == fields.end()) return {infinity, -infinity};
  return {found->minimum, found->maximum};
}

/// Whether a field of this name can stand on the left of a comparison.
bool isWord(const std::string& name) {
  return !name.empty() && !isDigit(name.front()) && quindleIdentifier(name) == name;
}

/// A condition that sets one end and leaves the other open.
std::string openRange(const QuindlePlanNode& plan, bool isAbove, const QuindleExpr& end) {
  const QuindleExpr& first = plan.arguments.front();
  const std::string op = isAbove ? " >= " : " <= ";
  if (plan.operation->name == "neighbours")
    return "neighbours(" + first.toSource() + ')' + op + end.toSource();
  const std::string name = first.value.toPlainText();
  if (isWord(name)) return name + op + end.toSource();
  const std::string start = "field(" + first.toSource() + ", ";
  return start + (isAbove ? end.toSource() + ", 1e300)" : "-1e300, " + end.toSource() + ')');
}

class RangeAdvice {
public:
  RangeAdvice(const QuindleExpr& call, const QuindlePlanNode& plan, Advisor& advisor)
      : call_(call), plan_(plan), advisor_(advisor), minimum_(endAt(minimumAt)), maximum_(endAt(maximumAt)) {}

  void advise() {
    if (minimum_.value && maximum_.value && *minimum_.value > *maximum_.value)
      adviseOnContradiction();
    else if (!maximum_.given && hasMoreAbove())
      advisor_.warn(call_, source() + " keeps nothing above " + printNumber(*maximum_.value) +
                               ", which is the maximum where none is written. Write " + openAbove() +
                               " if there should be none.");
    else if (!minimum_.given && wholeOf(plan_).minimum < *minimum_.value)
      advisor_.warn(call_, source() + " keeps nothing below " + printNumber(*minimum_.value) +
                               ", which is the minimum where none is written. Write " + openBelow() +
                               " if there should be none.");
  }

private:
  End endAt(std::size_t index) const {
    const QuindleExpr& argument = plan_.arguments[index];
    return {argument, isGiven(call_, plan_, index), advisor_.knownNumber(argument)};
  }

  /// A radius alone asks for points that stand alone, which is what the default is for.
  bool hasMoreAbove() const {
    if (plan_.operation->name == "neighbours" && (!minimum_.given || minimum_.value.value_or(1) < 1))
      return false;
    return wholeOf(plan_).maximum > *maximum_.value;
  }

  void adviseOnContradiction() {
    const std::string minimum = printNumber(*minimum_.value);
    const std::string maximum = printNumber(*maximum_.value);
    std::string message = source() + " holds for no point: its ";
    if (!maximum_.given)
      message += "minimum is " + minimum + ", and its maximum, where none is written, " + maximum +
                 ". Write " + openAbove() + '.';
    else if (!minimum_.given)
      message += "maximum is " + maximum + ", and its minimum, where none is written, " + minimum +
                 ". Write " + openBelow() + '.';
    else
      message +=
          "minimum, " + minimum + ", is above its maximum, " + maximum + ". Write the smaller one first.";
    advisor_.warn(call_, message);
  }

  std::string source() const { return call_.toSource(); }
  std::string openAbove() const { return openRange(plan_, true, minimum_.argument); }
  std::string openBelow() const { return openRange(plan_, false, maximum_.argument); }

  const QuindleExpr& call_;
  const QuindlePlanNode& plan_;
  Advisor& advisor_;
  const End minimum_;
  const End maximum_;
};

/// A comparison leaves one end open, so only a count that is below none at all is left to tell of.
void adviseOnCount(const QuindleExpr& compare, const QuindlePlanNode& plan, Advisor& advisor) {
  const QuindleExpr& maximum = plan.arguments[maximumAt];
  if (maximum.kind != Kind::Literal || maximum.value.numberValue >= 0) return;
  advisor.warn(compare, compare.toSource() + " holds for no point, since no count is below 0. Write " +
                            openRange(plan, false, plan.arguments[minimumAt]) +
                            " for points that stand alone.");
}

} // namespace

void adviseOnRange(const QuindleExpr& written, const QuindlePlanNode& plan, Advisor& advisor) {
  const bool counts = plan.operation->name == "neighbours";
  if (!counts && plan.operation->name != "field") return;
  if (written.kind == Kind::Call)
    RangeAdvice(written, plan, advisor).advise();
  else if (counts)
    adviseOnCount(written, plan, advisor);
}

} // namespace Zamt
