#include "quindle/check/advice/classAdvice.h"

#include "quindle/core/AsciiText.h"
#include "quindle/core/Numbers.h"
#include "quindle/core/PointVocabulary.h"
#include "quindle/core/QuindleParamTypes.h"
#include "quindle/core/Refusals.h"

#include <algorithm>
#include <utility>

namespace Zamt {

namespace {

using Kind = QuindleExpr::Kind;

/// Below this many letters one letter makes another word too easily, as in "Rail" and "Rain".
constexpr std::size_t fewestLetters = 6;

bool isNumber(std::string_view name) {
  return !name.empty() && std::all_of(name.begin(), name.end(), isDigit);
}

/// Without what people write in different ways.
std::string simplified(std::string_view name) {
  std::string simple = lowered(name);
  std::erase_if(simple, [](char c) { return c == ' ' || c == '-'; });
  return simple;
}

/// Whether one letter of the one was replaced, left out or added. Digits tell classes apart.
bool differInOneLetter(std::string_view a, std::string_view b) {
  if (a.size() < b.size()) std::swap(a, b);
  if (a.size() - b.size() > 1) return false;
  const auto [inA, inB] = std::mismatch(a.begin(), a.end(), b.begin(), b.end());
  if (inA == a.end() || isDigit(*inA)) return false;
  const bool replaced = a.size() == b.size();
  if (replaced && isDigit(*inB)) return false;
  return std::equal(inA + 1, a.end(), replaced ? inB + 1 : inB, b.end());
}

bool isNear(const std::string& simple, const std::string& standard) {
  const std::string other = simplified(standard);
  return simple == other || (other.size() >= fewestLetters && differInOneLetter(simple, other));
}

/// All names of the standard's tables, the current one first.
const std::vector<std::string>& standardNames() {
  static const std::vector<std::string> names = [] {
    std::vector<std::string> made;
    for (const QuindleClass& known : standardQuindleClasses()) made.push_back(known.name);
    for (const QuindleClass& known : olderQuindleClasses()) made.push_back(known.name);
    return made;
  }();
  return names;
}

bool isStandard(std::string_view name) {
  return std::find(standardNames().begin(), standardNames().end(), name) != standardNames().end();
}

/// The number that the standard has for a class; empty if it has none of that name.
std::string standardNumber(std::string_view name) {
  for (const QuindleClass& known : standardQuindleClasses())
    if (known.name == name) return std::to_string(known.number);
  return {};
}

std::string onLine(std::int32_t line) { return " on line " + std::to_string(line); }

} // namespace

std::string nearClassName(std::string_view name) {
  constexpr std::size_t longest = 64; // far longer than any of them
  if (name.size() > longest || isStandard(name)) return {};
  const std::string simple = simplified(name);
  for (const std::string& standard : standardNames())
    if (isNear(simple, standard)) return standard;
  return {};
}

ClassAdvice::ClassAdvice(Advisor& advisor) : advisor_(advisor) {
  const std::vector<QuindleParam>& params = advisor.document().params;
  hasData_ = std::any_of(params.begin(), params.end(), [](const QuindleParam& param) {
    const QuindleParamType* const type = findQuindleParamType(param.type);
    return type && type->isData;
  });
}

void ClassAdvice::classify(const QuindleStep& step, const std::vector<std::string>& selected) {
  if (step.value.kind != Kind::Literal || step.value.value.kind != QuindleValue::Kind::Text) {
    advisor_.warn(step, refusal::noClassInQuotes);
    return;
  }
  if (!hasData_) advisor_.warn(step, refusal::noDataToClassify);
  const std::string& name = step.value.value.textValue;
  if (name.empty()) {
    advisor_.warn(step, refusal::noClass);
    return;
  }
  const bool isNumbered =
      step.classNumber.kind == QuindleValue::Kind::Number && step.classNumber.numberValue >= 0;
  const std::string number = isNumbered ? printNumber(step.classNumber.numberValue) : std::string();
  adviseOnClassName(name, step.value, advisor_);
  adviseOnNumberAsName(step, name, number);
  adviseOnOwnClass(step, name, number, selected);
  compareWithEarlier(step, name, number);
}

void ClassAdvice::adviseOnOwnClass(const QuindleStep& step, const std::string& name,
                                   const std::string& number, const std::vector<std::string>& selected) {
  const std::string target = number.empty() ? standardNumber(name) : number;
  const bool isOwn = std::any_of(selected.begin(), selected.end(), [&](const std::string& kept) {
    return kept == name || (!number.empty() && kept == number);
  });
  if (!isOwn) return;
  advisor_.warn(step, target.empty() ? "This puts the points into " + inQuotes(name) +
                                           ", one of the classes it selects. That cannot change anything."
                                     : refusal::ownClass(name, target));
}

void ClassAdvice::adviseOnNumberAsName(const QuindleStep& step, const std::string& name,
                                       const std::string& number) {
  if (!isNumber(name) || name == number) return;
  std::string meant = "its name, or a name of your own and \"as " + name + "\" behind it";
  for (const QuindleClass& known : standardQuindleClasses())
    if (std::to_string(known.number) == name) meant = inQuotes(known.name);
  advisor_.warn(step.value, "This makes a class that is called " + inQuotes(name) +
                                ", whatever its number; it is not class " + name + ". Write " + meant +
                                " if that is meant.");
}

void ClassAdvice::compareWithEarlier(const QuindleStep& step, const std::string& name,
                                     const std::string& number) {
  const auto [named, isNewName] = numbers_.emplace(name, Use{number, step.line});
  const std::string& earlier = named->second.other;
  // The data will have the number of a class of the standard.
  const bool isKnown = (earlier.empty() || number.empty()) && isStandard(name);
  if (!isNewName && earlier != number && !isKnown) {
    const std::string wanted = earlier.empty() ? number : earlier;
    advisor_.warn(step,
                  "The class " + inQuotes(name) +
                      (earlier.empty() ? " has no number of its own" : " is number " + earlier) +
                      onLine(named->second.line) +
                      (number.empty() ? " and is left without one here" : " and number " + number + " here") +
                      ". Write \"as " + wanted + "\" in both places.");
  }
  if (number.empty()) return;
  const auto [numbered, isNewNumber] = names_.emplace(number, Use{name, step.line});
  if (!isNewNumber && numbered->second.other != name)
    advisor_.warn(step, "Class " + number + " is called " + inQuotes(numbered->second.other) +
                            onLine(numbered->second.line) + " and " + inQuotes(name) +
                            " here. Write the same name in both places, or another number.");
}

} // namespace Zamt
