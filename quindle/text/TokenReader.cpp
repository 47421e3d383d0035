#include "quindle/text/TokenReader.h"

#include "quindle/core/QuindleDocument.h"
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

bool stopsRecovery(const Token& token) {
  switch (token.kind) {
  case Token::Kind::End: return true;
  case Token::Kind::Symbol: return token.text == "{" || token.text == "}";
  case Token::Kind::Word: return token.text == "param" || token.text == "on" || stepKeyword(token.text);
  default: return false;
  }
}

} // namespace

TokenReader::TokenReader(const std::string& source, FaultSink& faults)
    : lexer_(source, faults), faults_(faults), current_(lexer_.next()), lookahead_(lexer_.next()) {}

bool TokenReader::acceptWord(std::string_view word) {
  if (!isWord(word)) return false;
  advance();
  return true;
}

bool TokenReader::acceptSymbol(std::string_view symbol) {
  if (!isSymbol(symbol)) return false;
  advance();
  return true;
}

std::string TokenReader::expectWord(std::string_view what) {
  if (current_.kind != Token::Kind::Word) {
    failFound("Expected " + std::string(what) + " but found ");
    return {};
  }
  std::string word(current_.text);
  advance();
  return word;
}

std::string TokenReader::expectText(std::string_view what) {
  if (current_.kind != Token::Kind::Text) {
    failFound("Expected " + std::string(what) + " in quotes but found ");
    return {};
  }
  std::string text(current_.text);
  advance();
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
  while (!stopsRecovery(current_)) advance();
}

void TokenReader::placeComments(std::vector<QuindleStep>& steps) {
  std::vector<PendingComment>& pending = lexer_.comments;
  while (placedComments_ < pending.size() && pending[placedComments_].line < current_.line)
    appendComment(pending[placedComments_++], steps);
  if (placedComments_ == pending.size()) {
    pending.clear();
    placedComments_ = 0;
  }
}

} // namespace Zamt
