#pragma once

#include "quindle/text/Lexer.h"

#include <string>
#include <string_view>
#include <vector>

namespace Zamt {

struct QuindleStep;

/// What all readers of the grammar share: the token at hand and the one behind it, the questions asked of
/// them, the messages when they are not what was expected, the recovery, and the placing of comments.
/// The scanner is always one token ahead, so a fault in the next token is reported before anything that is
/// said about the current one.
class TokenReader {
public:
  /// `source` and `faults` must outlive it.
  TokenReader(const std::string& source, FaultSink& faults);

  const Token& current() const { return current_; }
  const Token& lookahead() const { return lookahead_; }
  bool isWord(std::string_view word) const { return current_.isWord(word); }
  bool isSymbol(std::string_view symbol) const { return current_.isSymbol(symbol); }

  /// Whether a list in braces ends here: at "}" or at the end of the file.
  bool atBlockEnd() const { return current_.kind == Token::Kind::End || isSymbol("}"); }

  void advance() {
    current_ = lookahead_;
    lookahead_ = lexer_.next();
  }

  /// Goes on behind the word or symbol if it is the current token; otherwise false without a message.
  bool acceptWord(std::string_view word);
  bool acceptSymbol(std::string_view symbol);

  /// Go on behind what is expected; otherwise an error at the current token, which stays, and an empty text
  /// or false.
  std::string expectWord(std::string_view what);
  std::string expectText(std::string_view what);
  bool expectSymbol(std::string_view symbol);

  /// Reports an error at the current token.
  void fail(const std::string& message);

  /// Reports an error that ends in what the current token is.
  void failFound(std::string_view before);

  /// Throws tokens away up to one at which reading can go on: a brace, the end, "param", "on" or a word that
  /// begins a step. The current token stays if it is one.
  void recover();

  /// Moves the comments that began on lines before the current token to the end of `steps`.
  void placeComments(std::vector<QuindleStep>& steps);

private:
  Lexer lexer_;
  FaultSink& faults_;
  Token current_;
  Token lookahead_;
  std::size_t placedComments_ = 0;
};

} // namespace Zamt
