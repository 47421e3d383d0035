#include "quindle/text/StepReader.h"

#include "quindle/text/StepKeyword.h"
#include "quindle/text/readValue.h"

#include <utility>

namespace Zamt {

using Role = QuindleSpan::Role;

bool StepReader::readBlock(std::vector<QuindleStep>& steps) {
  if (openBlock(steps, Part::Trigger) == Outcome::Failed) return false;
  for (;;) {
    tokens_.placeComments(*blocks_.back().steps);
    if (!tokens_.atBlockEnd()) {
      readStep();
      continue;
    }
    const bool isOutermost = blocks_.size() == 1;
    const bool closed = closeBlock();
    if (isOutermost) return closed;
  }
}

StepReader::Outcome StepReader::openBlock(std::vector<QuindleStep>& steps, Part part) {
  if (!tokens_.expectSymbol("{")) return Outcome::Failed;
  blocks_.push_back({&steps, part});
  return Outcome::Opened;
}

void StepReader::readStep() {
  const Token& token = tokens_.current();
  const auto keyword =
      token.kind == Token::Kind::Word ? stepKeyword(token.text) : std::optional<QuindleStep::Kind>();
  if (!keyword) {
    tokens_.failFound("Expected a step but found ");
    skipFault();
    return;
  }
  QuindleStep& step = blocks_.back().steps->emplace_back();
  step.kind = *keyword;
  step.line = token.line;
  step.column = token.column;
  tokens_.advance(Role::Keyword);
  finishStep(readForm(step));
}

/// Goes on behind a block: with the "else" of the step that it belongs to, or with the steps behind that one.
bool StepReader::closeBlock() {
  const Part part = blocks_.back().part;
  const bool closed = tokens_.expectSymbol("}");
  blocks_.pop_back();
  if (blocks_.empty()) return closed;
  if (!closed)
    finishStep(Outcome::Failed);
  else if (part == Part::ThenBlock && tokens_.acceptWord("else"))
    finishStep(openBlock(blocks_.back().steps->back().elseBody, Part::ElseBlock));
  return closed;
}

void StepReader::finishStep(Outcome outcome) {
  if (outcome != Outcome::Failed) return;
  blocks_.back().steps->pop_back();
  skipFault();
}

/// Goes on to where the next step may begin. The token that stopped the recovery is thrown away too, unless
/// it ends the block.
void StepReader::skipFault() {
  tokens_.recover();
  if (!tokens_.atBlockEnd()) tokens_.skip();
}

StepReader::Outcome StepReader::readForm(QuindleStep& step) {
  using Kind = QuindleStep::Kind;
  switch (step.kind) {
  case Kind::Let: return readAssignment(step, "a name for the value", Role::Variable);
  case Kind::Create: return readCreate(step);
  case Kind::Select: expressions_.readExpression(step.condition); break;
  case Kind::Classify: readClassify(step); break;
  case Kind::Set: return readAssignment(step, "the parameter to set", Role::Target);
  case Kind::Connect: return readConnect(step);
  case Kind::Call: readCall(step); break;
  case Kind::Run:
    step.name = tokens_.expectText("the name of the Quindle to run");
    expressions_.readArguments(step.args, step.argNames);
    break;
  case Kind::Report: makeTextLiteral(step, tokens_.expectReport("the text to report")); break;
  case Kind::If: expressions_.readExpression(step.condition); return openBlock(step.body, Part::ThenBlock);
  case Kind::ForEach: return readForEach(step);
  case Kind::Comment:
  case Kind::Unparsed: break; // no word begins these
  }
  return Outcome::Complete;
}

StepReader::Outcome StepReader::readAssignment(QuindleStep& step, std::string_view what, Role role) {
  step.name = tokens_.expectWord(what, role);
  if (!tokens_.expectSymbol("=")) return Outcome::Failed;
  expressions_.readExpression(step.value);
  return Outcome::Complete;
}

StepReader::Outcome StepReader::readCreate(QuindleStep& step) {
  step.name = tokens_.expectWord("a name for the object", Role::Object);
  if (!tokens_.expectSymbol("=")) return Outcome::Failed;
  makeTextLiteral(step, tokens_.expectText("the creator to make it from, written \"Category/Identifier\""));
  return Outcome::Complete;
}

StepReader::Outcome StepReader::readConnect(QuindleStep& step) {
  step.name = tokens_.expectWord("the slot to connect", Role::Target);
  if (!tokens_.expectSymbol("<-")) return Outcome::Failed;
  step.source = tokens_.expectWord("what to connect it to", Role::Target);
  return Outcome::Complete;
}

void StepReader::readClassify(QuindleStep& step) {
  if (!tokens_.acceptWord("into")) tokens_.fail("Expected \"into\" after \"classify\".");
  expressions_.readExpression(step.value);
  if (tokens_.acceptWord("as")) readValue(tokens_, step.classNumber);
  if (tokens_.acceptWord("color") || tokens_.acceptWord("colour")) readValue(tokens_, step.color);
}

void StepReader::readCall(QuindleStep& step) {
  step.name = tokens_.expectWord("the operation to call", Role::Target);
  if (!step.name.empty() && step.name.back() == '.')
    step.name += tokens_.expectText("the name of the action");
  if (tokens_.isSymbol("(")) expressions_.readArguments(step.args, step.argNames);
}

StepReader::Outcome StepReader::readForEach(QuindleStep& step) {
  if (!tokens_.acceptWord("each")) tokens_.fail("Expected \"each\" after \"for\".");
  step.name = tokens_.expectWord("a name for each item", Role::Variable);
  if (!tokens_.acceptWord("in")) tokens_.fail("Expected \"in\" after the loop variable.");
  expressions_.readExpression(step.value);
  return openBlock(step.body, Part::LoopBlock);
}

void StepReader::makeTextLiteral(QuindleStep& step, std::string&& text) {
  step.value.kind = QuindleExpr::Kind::Literal;
  step.value.line = step.line;
  step.value.column = step.column;
  step.value.value.kind = QuindleValue::Kind::Text;
  step.value.value.textValue = std::move(text);
}

} // namespace Zamt
