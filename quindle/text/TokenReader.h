#pragma once

#include "quindle/text/Lexer.h"
#include "quindle/text/QuindleSpans.h"
#include "quindle/text/formatQuindle.h"

#include <string>
#include <string_view>
#include <vector>

namespace Zamt {

struct QuindleStep;

/// What all readers of the grammar share: the token at hand and the one behind it, the questions asked of
/// them, the messages when they are not what was expected, the recovery, the placing of comments, and the
/// spans of what they take. The scanner is always one token ahead, so a fault in the next token is reported
/// before anything that is said about the current one.
class TokenReader {
public:
  using Role = QuindleSpan::Role;

  /// `source`, `faults` and `spans`, which may be null, must outlive it.
  TokenReader(const std::string& source, FaultSink& faults, SpanRecorder* spans);

  const Token& current() const { return current_; }
  const Token& lookahead() const { return lookahead_; }
  bool isWord(std::string_view word) const { return current_.isWord(word); }
  bool isSymbol(std::string_view symbol) const { return current_.isSymbol(symbol); }

  /// Whether a list in braces ends here: at "}" or at the end of the file.
  bool atBlockEnd() const { return current_.kind == Token::Kind::End || isSymbol("}"); }

  /// Goes on behind the current token, taken in that role.
  void advance(Role role) {
    if (spans_) record(role);
    current_ = lookahead_;
    lookahead_ = lexer_.next();
  }

  /// Goes on behind the current token, which nothing was expected to be.
  void skip();

  /// Goes on behind the word or symbol if it is the current token; otherwise false without a message.
  bool acceptWord(std::string_view word, Role role = Role::Keyword);
  bool acceptSymbol(std::string_view symbol);

  /// Go on behind what is expected; otherwise an error at the current token, which stays, and an empty text
  /// or false.
  std::string expectWord(std::string_view what, Role role);
  std::string expectText(std::string_view what);
  bool expectSymbol(std::string_view symbol);

  /// As `expectText`, for a text whose braces name things.
  std::string expectReport(std::string_view what);

  /// The span of an argument begins at the current token, and ends behind the last one taken.
  std::size_t openArgument();
  void closeArgument(std::size_t opened);

  /// Reports an error at the current token.
  void fail(const std::string& message);

  /// Reports an error that ends in what the current token is.
  void failFound(std::string_view before);

  /// Throws tokens away up to one at which reading can go on: a brace, the end, "param", "on" or a word that
  /// begins a step. The current token stays if it is one.
  void recover();

  /// Moves the comments that began on lines before the current token to the end of `steps`.
  void placeComments(std::vector<QuindleStep>& steps);

  /// A comment that began before the current token and is placed from now on was moved to the trigger of that
  /// line.
  void startTrigger(std::int32_t line);

  /// The comments with text that were moved, and then those that have found no place.
  std::vector<QuindleStrayComment> strayComments() const;

private:
  void record(Role role);

  Lexer lexer_;
  FaultSink& faults_;
  SpanRecorder* spans_;
  const std::string& source_;
  Token current_;
  Token lookahead_;
  std::size_t placedComments_ = 0;
  std::vector<QuindleStrayComment> movedComments_;
  std::int32_t triggerLine_ = 0;
  std::size_t triggerOffset_ = 0; ///< Of the "{" of its block.
};

} // namespace Zamt
