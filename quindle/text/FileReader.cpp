#include "quindle/text/FileReader.h"

#include "quindle/text/FileWords.h"
#include "quindle/text/readValue.h"

#include <utility>

namespace Zamt {

using Role = QuindleSpan::Role;

namespace {

void replaceNamedSource(QuindleParam& param) {
  if (param.defaultValue.kind != QuindleValue::Kind::Identifier) return;
  for (const auto& [word, source] : defaultSources) {
    if (param.defaultValue.textValue != word) continue;
    param.defaultSource = source;
    param.defaultValue = {};
    return;
  }
}

} // namespace

// Copies, for both texts may be fields of the document that is about to be filled.
FileReader::FileReader(const std::string& source, const std::string& file, QuindleDocument& doc, Diag& diag,
                       FaultSink::Keep keep, SpanRecorder* spans)
    : source_(source),
      file_(file),
      faults_(file_, diag, keep),
      tokens_(source_, faults_, spans),
      steps_(tokens_),
      doc_(doc),
      diag_(diag) {}

bool FileReader::read() {
  doc_.sourceFile = file_;
  if (!tokens_.acceptWord("quindle")) {
    tokens_.failFound("A Quindle file starts with the word \"quindle\", but this one starts with ");
    return false;
  }
  doc_.name = tokens_.expectText("the Quindle's name");
  if (!tokens_.expectSymbol("{")) return false;
  while (!tokens_.atBlockEnd()) readItem();
  if (!tokens_.expectSymbol("}")) return false;
  if (doc_.triggers.empty())
    faults_.at(Diag::Severity::Warning,
               "This Quindle has no trigger, so nothing will ever run it. Add an \"on run { ... }\" block.",
               0, 0);
  return diag_.errorCount == 0;
}

void FileReader::readItem() {
  if (tokens_.isWord("param"))
    readParam();
  else if (tokens_.isWord("on"))
    readTrigger();
  else if (tokens_.acceptWord("tags", Role::Setting))
    readTags();
  else if (tokens_.acceptWord("enabled", Role::Setting))
    readEnabled();
  else if (!readSetting()) {
    tokens_.failFound("Expected a setting, a parameter or a trigger, but found ");
    tokens_.recover();
    const bool beginsItem = tokens_.isWord("param") || tokens_.isWord("on");
    if (!beginsItem && !tokens_.atBlockEnd()) tokens_.skip();
  }
}

bool FileReader::readSetting() {
  for (const TextSetting& setting : textSettings) {
    if (!tokens_.acceptWord(setting.word, Role::Setting)) continue;
    doc_.*setting.field = tokens_.expectText(setting.what);
    return true;
  }
  return false;
}

void FileReader::readTags() {
  do doc_.tags.push_back(tokens_.expectText("a tag"));
  while (tokens_.acceptSymbol(","));
}

void FileReader::readEnabled() {
  if (tokens_.acceptWord("true"))
    doc_.enabled = true;
  else if (tokens_.acceptWord("false"))
    doc_.enabled = false;
  else
    tokens_.fail("Expected \"true\" or \"false\" after \"enabled\".");
}

void FileReader::readParam() {
  QuindleParam param;
  param.line = tokens_.current().line;
  tokens_.advance(Role::Keyword);
  param.name = tokens_.expectWord("a parameter name", Role::Parameter);
  if (!tokens_.expectSymbol(":")) {
    tokens_.recover();
    return;
  }
  param.type = tokens_.expectWord("the parameter's type", Role::Type);
  if (tokens_.acceptSymbol("=")) {
    readValue(tokens_, param.defaultValue);
    replaceNamedSource(param);
  }
  if (tokens_.acceptSymbol("[") && !readRange(param)) {
    tokens_.recover();
    return;
  }
  if (tokens_.current().kind == Token::Kind::Text) param.help = tokens_.expectText("the help text");
  addParam(std::move(param));
}

bool FileReader::readRange(QuindleParam& param) {
  readValue(tokens_, param.minimum);
  if (!tokens_.expectSymbol("..")) return false;
  readValue(tokens_, param.maximum);
  return tokens_.expectSymbol("]");
}

void FileReader::addParam(QuindleParam&& param) {
  if (isParamName(param.name)) {
    faults_.at(Diag::Severity::Error, "There is already a parameter called \"" + param.name + "\".",
               param.line, 0);
    return;
  }
  if (!paramNames_.empty()) paramNames_.insert(param.name);
  doc_.params.push_back(std::move(param));
}

bool FileReader::isParamName(const std::string& name) {
  // Looking through a few names is faster than hashing them; looking through many costs their square.
  constexpr std::size_t fewParams = 32;
  if (doc_.params.size() < fewParams) return doc_.findParam(name) != nullptr;
  if (paramNames_.empty())
    for (const QuindleParam& param : doc_.params) paramNames_.insert(param.name);
  return paramNames_.count(name) != 0;
}

void FileReader::readTrigger() {
  QuindleTrigger trigger;
  trigger.line = tokens_.current().line;
  // Steps are large: an ordinary trigger should not have to move those it has when it grows.
  constexpr std::size_t ordinarySteps = 8;
  trigger.steps.reserve(ordinarySteps);
  tokens_.advance(Role::Keyword);
  if (!readOccasion(trigger)) {
    tokens_.failFound("Expected \"run\", \"key\", \"tile.enter\" or \"load\" after \"on\", but found ");
    tokens_.recover();
    return;
  }
  tokens_.startTrigger(trigger.line);
  if (steps_.readBlock(trigger.steps))
    doc_.triggers.push_back(std::move(trigger));
  else
    tokens_.recover();
}

bool FileReader::readOccasion(QuindleTrigger& trigger) {
  for (const auto& [word, kind] : occasions) {
    if (!tokens_.acceptWord(word)) continue;
    trigger.kind = kind;
    if (kind == QuindleTrigger::Kind::Key) trigger.key = tokens_.expectText("the key to bind");
    return true;
  }
  return false;
}

void FileReader::skipRest() {
  while (tokens_.current().kind != Token::Kind::End) tokens_.skip();
}

} // namespace Zamt
