#include "quindle/text/TokenReader.h"

#include "quindle/core/QuindleDocument.h"
#include "quindle/text/SpanRecorder.h"
#include "quindle/text/StepKeyword.h"

namespace Zamt {

namespace {

constexpr std::string_view blanks = " \t";
constexpr std::string_view blanksAndReturns = " \t\r";

std::string_view trimmed(std::string_view text) {
  const std::size_t last = text.find_last_not_of(blanksAndReturns);
  text = text.substr(0, last + 1);
  const std::size_t first = text.find_first_not_of(blanks);
  return first == std::string_view::npos ? std::string_view() : text.substr(first);
}

/// One step a line of the comment. A comment without text makes none, an empty line within one does.
void appendComment(const PendingComment& comment, std::vector<QuindleStep>& steps) {
  std::string_view rest = comment.text;
  while (!rest.empty()) {
    const std::size_t newline = rest.find('\n');
    QuindleStep& step = steps.emplace_back();
    step.kind = QuindleStep::Kind::Comment;
    step.comment = trimmed(rest.substr(0, newline));
    step.line = comment.line;
    rest = newline == std::string_view::npos ? std::string_view() : rest.substr(newline + 1);
  }
}

/// Whether a comment says anything; one that does not may go without a word.
bool hasText(const PendingComment& comment) {
  return comment.text.find_first_not_of(" \t\r\n") != std::string_view::npos;
}

bool beginsItemOrStep(std::string_view word) { return word == "param" || word == "on" || stepKeyword(word); }

bool stopsRecovery(const Token& token) {
  switch (token.kind) {
  case Token::Kind::End: return true;
  case Token::Kind::Symbol: return token.text == "{" || token.text == "}";
  case Token::Kind::Word: return beginsItemOrStep(token.text);
  default: return false;
  }
}

QuindleSpan::Role symbolRole(std::string_view symbol) {
  constexpr std::string_view inOperators = "<>=!-";
  return inOperators.find(symbol[0]) == std::string_view::npos ? QuindleSpan::Role::Punctuation
                                                               : QuindleSpan::Role::Operator;
}

} // namespace

TokenReader::TokenReader(const std::string& source, FaultSink& faults, SpanRecorder* spans)
    : lexer_(source, faults, spans),
      faults_(faults),
      spans_(spans),
      source_(source),
      current_(lexer_.next()),
      lookahead_(lexer_.next()) {}

/// Texts, numbers and symbols have one role wherever they stand.
void TokenReader::record(Role role) {
  switch (current_.kind) {
  case Token::Kind::End: return;
  case Token::Kind::Text: role = Role::Text; break;
  case Token::Kind::Number: role = Role::Number; break;
  case Token::Kind::Symbol: role = symbolRole(current_.text); break;
  case Token::Kind::Word: break;
  }
  spans_->addToken(current_, role);
}

void TokenReader::skip() {
  advance(current_.kind == Token::Kind::Word && beginsItemOrStep(current_.text) ? Role::Keyword
                                                                                : Role::Unread);
}

bool TokenReader::acceptWord(std::string_view word, Role role) {
  if (!isWord(word)) return false;
  advance(role);
  return true;
}

bool TokenReader::acceptSymbol(std::string_view symbol) {
  if (!isSymbol(symbol)) return false;
  advance(Role::Punctuation);
  return true;
}

std::string TokenReader::expectWord(std::string_view what, Role role) {
  if (current_.kind != Token::Kind::Word) {
    failFound("Expected " + std::string(what) + " but found ");
    return {};
  }
  std::string word(current_.text);
  advance(role);
  return word;
}

std::string TokenReader::expectText(std::string_view what) {
  if (current_.kind != Token::Kind::Text) {
    failFound("Expected " + std::string(what) + " in quotes but found ");
    return {};
  }
  std::string text(current_.text);
  advance(Role::Text);
  return text;
}

std::string TokenReader::expectReport(std::string_view what) {
  const Token token = current_;
  std::string text = expectText(what);
  if (spans_ && token.kind == Token::Kind::Text)
    spans_->addPlaceholders(std::string_view(source_).substr(token.offset, token.length));
  return text;
}

bool TokenReader::expectSymbol(std::string_view symbol) {
  if (acceptSymbol(symbol)) return true;
  failFound("Expected \"" + std::string(symbol) + "\" but found ");
  return false;
}

void TokenReader::fail(const std::string& message) {
  faults_.at(Diag::Severity::Error, message, current_.line, current_.column);
}

void TokenReader::failFound(std::string_view before) {
  if (faults_.isOpen()) fail(std::string(before) + describeToken(current_) + '.');
}

void TokenReader::recover() {
  while (!stopsRecovery(current_)) skip();
}

void TokenReader::placeComments(std::vector<QuindleStep>& steps) {
  std::vector<PendingComment>& pending = lexer_.comments;
  for (; placedComments_ < pending.size() && pending[placedComments_].line < current_.line;
       ++placedComments_) {
    const PendingComment& comment = pending[placedComments_];
    appendComment(comment, steps);
    if (comment.offset < triggerOffset_ && hasText(comment))
      movedComments_.push_back({comment.line, triggerLine_});
  }
  if (placedComments_ == pending.size()) {
    pending.clear();
    placedComments_ = 0;
  }
}

void TokenReader::startTrigger(std::int32_t line) {
  triggerLine_ = line;
  triggerOffset_ = current_.offset;
}

std::vector<QuindleStrayComment> TokenReader::strayComments() const {
  std::vector<QuindleStrayComment> strays = movedComments_;
  for (std::size_t i = placedComments_; i < lexer_.comments.size(); ++i)
    if (hasText(lexer_.comments[i])) strays.push_back({lexer_.comments[i].line, 0});
  return strays;
}

std::size_t TokenReader::openArgument() { return spans_ ? spans_->openArgument(current_) : 0; }

void TokenReader::closeArgument(std::size_t opened) {
  if (spans_) spans_->closeArgument(opened);
}

} // namespace Zamt
