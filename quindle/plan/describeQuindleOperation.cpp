#include "quindle/core/commaList.h"
#include "quindle/plan/QuindleOperation.h"
#include "quindle/plan/conditionCosts.h"

namespace Zamt {

namespace {

std::string necessity(const QuindleOpParam& param) {
  if (param.required) return " (needed)";
  if (param.defaultValue.kind == QuindleValue::Kind::None) return " (optional)";
  return " (optional, normally " + param.defaultValue.toSource() + ')';
}

/// The condition as a line of a listing: how it is called and what it keeps.
std::string listingLine(const QuindleOperation& operation) {
  const auto listed = [](const QuindleOpParam& param) {
    return param.required ? param.name : '[' + param.name + ']';
  };
  return operation.name + '(' + commaList(operation.params, listed) + ")  -  " + operation.summary + '\n';
}

} // namespace

std::string describeQuindleOperation(const std::string& name) {
  const QuindleOperation* const operation = findQuindleOperation(name);
  if (!operation) return {};
  std::string out = operation->name + " - " + operation->summary + "\n\n" + operation->description + '\n';
  out += std::string("\nCost: ") + costWords(operation->cost) +
         ". Conditions are reordered so the cheap ones run first, so writing this alongside cheaper ones "
         "costs less than it looks.\n";
  if (!operation->params.empty()) out += "\nArguments:\n";
  for (const QuindleOpParam& param : operation->params)
    out += "  " + param.name + necessity(param) + "\n      " + param.help + '\n';
  return out + "\nBuilds: " + operation->creator + '\n';
}

std::string listQuindleOperations(const std::string& creatorPrefix) {
  std::string out;
  for (const QuindleOperation& operation : allQuindleOperations())
    if (operation.creator.starts_with(creatorPrefix)) out += listingLine(operation);
  return out;
}

} // namespace Zamt
