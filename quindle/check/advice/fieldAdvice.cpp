#include "quindle/check/advice/fieldAdvice.h"

#include "quindle/core/AsciiText.h"
#include "quindle/core/PointVocabulary.h"

#include <algorithm>
#include <array>
#include <map>

namespace Zamt {

namespace {

using Kind = QuindleExpr::Kind;

/// What the arguments are called that name a field.
constexpr std::array<std::string_view, 2> fieldArguments{"name", "field"};

/// Fields that no standard knows and conditions read where nothing else is written.
void addDefaultFields(std::map<std::string, std::string>& names) {
  for (const QuindleOperation& operation : allQuindleOperations())
    if (const QuindleOpParam* const param = operation.findParam("field"))
      names.emplace(lowered(param->defaultValue.textValue), param->defaultValue.textValue);
}

/// All known fields by their names in small letters.
const std::map<std::string, std::string>& knownFields() {
  static const std::map<std::string, std::string> names = [] {
    std::map<std::string, std::string> made;
    for (const QuindleField& field : knownQuindleFields()) made.emplace(lowered(field.name), field.name);
    addDefaultFields(made);
    return made;
  }();
  return names;
}

void adviseOnName(const std::string& name, const QuindleExpr& where, const std::string& wording,
                  Advisor& advisor) {
  const std::optional<std::string> known = fieldInOtherCase(name);
  if (!known) return;
  if (isCoordinate(name))
    advisor.warn(where, inQuotes(name) +
                            " is a coordinate in the text of an \"expr\" only; anywhere else it is a field, "
                            "and the field is called \"" +
                            *known + "\". Write " + wording + '.');
  else
    advisor.warn(where, "The usual field is called \"" + *known + "\", and " + inQuotes(name) +
                            " is another one: names are taken exactly as written. Write " + wording +
                            " if the usual one is meant.");
}

/// The comparison with another field, and for coordinates the way that the text of an "expr" offers.
std::string comparisonOf(const QuindleExpr& compare, const std::string& known) {
  QuindleExpr other = compare;
  other.operands[0].name = known;
  const bool isWritten = compare.operands[1].kind == Kind::Literal;
  const bool offersText = isCoordinate(compare.operands[0].name) && isWritten;
  return other.toSource() + (offersText ? " or expr(\"" + compare.toSource() + "\")" : std::string());
}

bool namesField(const QuindleOpParam& param) {
  return std::find(fieldArguments.begin(), fieldArguments.end(), param.name) != fieldArguments.end();
}

} // namespace

void adviseOnFields(const QuindleExpr& written, const QuindlePlanNode& plan, Advisor& advisor) {
  if (written.kind == Kind::Compare) {
    const QuindleExpr& left = written.operands[0];
    if (advisor.findParam(left.name)) return;
    if (const std::optional<std::string> known = fieldInOtherCase(left.name))
      adviseOnName(left.name, left, comparisonOf(written, *known), advisor);
    return;
  }
  for (std::size_t i = 0; i < plan.arguments.size(); ++i) {
    const QuindleExpr& argument = plan.arguments[i];
    if (!namesField(plan.operation->params[i]) || argument.kind != Kind::Literal) continue;
    const std::string& name = argument.value.textValue;
    if (const std::optional<std::string> known = fieldInOtherCase(name))
      adviseOnName(name, argument, inQuotes(*known), advisor);
  }
}

bool isCoordinate(std::string_view word) { return word == "x" || word == "y" || word == "z"; }

std::optional<std::string> fieldInOtherCase(std::string_view name) {
  const auto found = knownFields().find(lowered(name));
  if (found == knownFields().end() || found->second == name) return std::nullopt;
  return found->second;
}

} // namespace Zamt
