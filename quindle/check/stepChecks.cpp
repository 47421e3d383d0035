#include "quindle/check/stepChecks.h"

#include <cmath>
#include <string>

namespace Zamt {

namespace {

// The classes of a point are bytes.
constexpr double firstClass = 0;
constexpr double lastClass = 255;

bool isClassNumber(double number) {
  return std::floor(number) == number && number >= firstClass && number <= lastClass;
}

} // namespace

StepChecks::StepChecks(const QuindleDocument& doc, Findings& findings) : doc_(doc), findings_(findings) {
  for (const QuindleParam& param : doc.params) scope_.insert(param.name);
}

void StepChecks::check(const QuindleTrigger& trigger) {
  selected_ = false;
  eachStep(
      trigger.steps, [this](const QuindleStep& step, const StepPlace& place) { enter(step, place); },
      [this](const QuindleStep& step) { leave(step); });
  forget(0);
}

void StepChecks::enter(const QuindleStep& step, const StepPlace& place) {
  if (startsElse(place)) startElse();
  checkStep(step);
  if (hasBlocks(step.kind)) openBlocks(step);
}

void StepChecks::leave(const QuindleStep& step) {
  if (!hasBlocks(step.kind)) return;
  if (step.kind == QuindleStep::Kind::If && step.elseBody.empty()) startElse();
  closeBlocks(step);
}

void StepChecks::checkStep(const QuindleStep& step) {
  using Kind = QuindleStep::Kind;
  switch (step.kind) {
  case Kind::Let: define(step); break;
  case Kind::Create: checkCreate(step); break;
  case Kind::Select: selected_ = true; break;
  case Kind::Classify: checkClassify(step); break;
  case Kind::Unparsed: checkChange(step); break;
  case Kind::ForEach:
    if (scope_.contains(step.name))
      findings_.warning("The loop variable \"" + step.name +
                            "\" hides something of the same name from outside the loop.",
                        step.line);
    break;
  case Kind::Run:
    if (step.name == doc_.name)
      findings_.error("This Quindle runs itself, which would never stop.", step.line);
    break;
  case Kind::Comment:
  case Kind::Set:
  case Kind::Connect:
  case Kind::Call:
  case Kind::If:
  case Kind::Report: break;
  }
}

void StepChecks::checkCreate(const QuindleStep& step) {
  const std::size_t dot = step.name.find('.');
  define(step);
  if (dot != std::string::npos)
    findings_.error('"' + step.name +
                        "\" names a slot, not an object. A created object gets a plain name, which the "
                        "steps after it then write as " +
                        step.name.substr(0, dot) + ".slot.",
                    step.line);
  const bool isLiteral = step.value.kind == QuindleExpr::Kind::Literal;
  const std::string creator = isLiteral ? step.value.value.toPlainText() : "";
  if (creator.empty())
    findings_.error("This says what to call the object but not what to make it from. Write the creator as "
                    "\"Category/Identifier\".",
                    step.line);
  else if (creator.find('/') == std::string::npos)
    findings_.warning('"' + creator +
                          "\" does not look like a creator name. They are written \"Category/Identifier\", "
                          "the way the object palette and a .scn file spell them.",
                      step.line);
}

void StepChecks::checkClassify(const QuindleStep& step) {
  const QuindleValue& number = step.classNumber;
  if (number.kind == QuindleValue::Kind::Number) {
    if (!isClassNumber(number.numberValue))
      findings_.error("A class number has to be a whole number between 0 and 255.", step.line);
  } else if (number.kind != QuindleValue::Kind::None) {
    findings_.error("The class number after \"as\" has to be a plain number.", step.line);
  }
  checkChange(step);
}

void StepChecks::checkChange(const QuindleStep& step) {
  if (!selected_)
    findings_.warning("This changes the data before anything has been selected, so it applies to every "
                      "point. Add a \"select\" first if that is not what you meant.",
                      step.line);
}

void StepChecks::openBlocks(const QuindleStep& step) {
  open_.push_back({added_.size(), selected_});
  if (step.kind == QuindleStep::Kind::ForEach) add(step.name);
}

void StepChecks::startElse() {
  Open& branches = open_.back();
  branches.selectedInBody = selected_;
  selected_ = branches.selectedBefore;
  forget(branches.added);
}

// A loop hands on what its body selected; of the two branches of an "if" both have to select.
void StepChecks::closeBlocks(const QuindleStep& step) {
  const Open& closed = open_.back();
  if (step.kind == QuindleStep::Kind::If) selected_ = selected_ && closed.selectedInBody;
  forget(closed.added);
  open_.pop_back();
}

void StepChecks::define(const QuindleStep& step) {
  if (scope_.contains(step.name))
    findings_.error("There is already something called \"" + step.name +
                        "\" here. Pick another name, or the later one silently wins wherever both are in "
                        "reach.",
                    step.line);
  add(step.name);
}

void StepChecks::add(std::string_view name) {
  const auto [at, isNew] = scope_.insert(name);
  if (isNew) added_.push_back(at);
}

void StepChecks::forget(std::size_t added) {
  for (; added_.size() > added; added_.pop_back()) scope_.erase(added_.back());
}

} // namespace Zamt
