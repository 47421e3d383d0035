#pragma once

#include "quindle/text/FaultSink.h"
#include "quindle/text/QuindleSpans.h"

#include <array>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace Zamt {

/// One token. `text` points into the source, or into the lexer when a text held escapes; it stays valid until
/// the second token after it is scanned.
struct Token {
  enum class Kind : std::int32_t { End = 0, Word = 1, Number = 2, Text = 3, Symbol = 4 };

  Kind kind = Kind::End;
  std::int32_t line = 1; ///< Of its first byte, from 1, in bytes.
  std::int32_t column = 1;
  std::string_view text;  ///< The word, the spelling, the text without quotes and escapes, or the symbol.
  std::size_t offset = 0; ///< Of its first byte in the source.
  std::size_t length = 0; ///< In the source, quotes included.

  bool isWord(std::string_view word) const { return kind == Kind::Word && text == word; }
  bool isSymbol(std::string_view symbol) const { return kind == Kind::Symbol && text == symbol; }
};

/// How a message calls a token: "the number 5", "a text", "\"word\"", "the end of the file".
std::string describeToken(const Token& token);

/// A comment that was scanned and has not found its place among the steps yet.
struct PendingComment {
  std::string_view text;  ///< Into the source.
  std::int32_t line = 0;  ///< On which it began.
  std::size_t offset = 0; ///< Of its first byte in the source.
};

class SpanRecorder;

/// Cuts a source into tokens and sets the comments aside. `source`, `faults` and `spans`, which gets the
/// comments unless it is null, must outlive it.
class Lexer {
public:
  Lexer(const std::string& source, FaultSink& faults, SpanRecorder* spans);

  /// The next token; at the end of the source, `End` again and again.
  Token next();

  /// Comments in the order of the file, so their lines never fall. The reader removes what it has placed.
  std::vector<PendingComment> comments;

private:
  std::int32_t columnOf(const char* byte) const { return static_cast<std::int32_t>(byte - lineStart_) + 1; }
  std::size_t offset() const { return static_cast<std::size_t>(at_ - begin_); }
  void startLine(); ///< The byte before `at_` was a newline.
  void skipToToken();
  void skipLineComment(const char* text);
  void skipBlockComment();
  void recordComment(QuindleSpan comment);
  void countLinesTo(const char* end);
  void scanWord(Token& token);
  void scanNumber(Token& token);
  void scanText(Token& token);
  void skipPlainText();
  void resolveEscape(std::string& out);
  void scanSymbol(Token& token, std::size_t length);

  FaultSink& faults_;
  SpanRecorder* spans_;
  const char* begin_;
  const char* at_;
  const char* end_; ///< Here stands the zero byte of the string, which ends every run of a class.
  const char* lineStart_;
  std::int32_t line_ = 1;

  /// Texts with their escapes resolved. Only two tokens are alive at a time, so two buffers take turns.
  std::array<std::string, 2> resolved_;
  std::size_t turn_ = 0;
};

} // namespace Zamt
