#include "quindle/text/Lexer.h"

#include "quindle/core/AsciiText.h"
#include "quindle/text/SpanRecorder.h"

#include <cstring>

namespace Zamt {

namespace {

/// What a byte begins, where a token or the space before it may stand.
enum class Start : std::uint8_t {
  Symbol,
  Blank,
  Newline,
  Letter,
  Digit,
  Dot,
  Quote,
  Hash,
  Slash,
  Less,
  EqualsMayFollow, // ">", "=" and "!", which "=" extends
  Zero             // the end of the source, or a symbol if it stands before it
};

constexpr Start classify(char c) {
  if (isDigit(c)) return Start::Digit;
  if (isNameByte(c)) return Start::Letter;
  switch (c) {
  case '\0': return Start::Zero;
  case ' ':
  case '\t':
  case '\r': return Start::Blank;
  case '\n': return Start::Newline;
  case '.': return Start::Dot;
  case '"': return Start::Quote;
  case '#': return Start::Hash;
  case '/': return Start::Slash;
  case '<': return Start::Less;
  case '>':
  case '=':
  case '!': return Start::EqualsMayFollow;
  default: return Start::Symbol;
  }
}

constexpr std::size_t byteValues = 256;

constexpr auto starts = [] {
  std::array<Start, byteValues> table{};
  for (std::size_t i = 0; i < byteValues; ++i) table[i] = classify(static_cast<char>(i));
  return table;
}();

constexpr auto wordBytes = [] {
  std::array<bool, byteValues> table{};
  for (std::size_t i = 0; i < byteValues; ++i) {
    const char c = static_cast<char>(i);
    table[i] = isNameByte(c) || c == '.';
  }
  return table;
}();

Start startOf(char c) { return starts[static_cast<unsigned char>(c)]; }
bool isWordByte(char c) { return wordBytes[static_cast<unsigned char>(c)]; }

std::string_view between(const char* begin, const char* end) {
  return {begin, static_cast<std::size_t>(end - begin)};
}

} // namespace

std::string describeToken(const Token& token) {
  switch (token.kind) {
  case Token::Kind::End: return "the end of the file";
  case Token::Kind::Number: return "the number " + std::string(token.text);
  case Token::Kind::Text: return "a text";
  case Token::Kind::Word:
  case Token::Kind::Symbol: break;
  }
  return '"' + std::string(token.text) + '"';
}

Lexer::Lexer(const std::string& source, FaultSink& faults, SpanRecorder* spans)
    : faults_(faults),
      spans_(spans),
      begin_(source.data()),
      at_(begin_),
      end_(begin_ + source.size()),
      lineStart_(begin_) {}

Token Lexer::next() {
  skipToToken();
  Token token;
  token.line = line_;
  token.column = columnOf(at_);
  token.offset = offset();
  switch (startOf(*at_)) {
  case Start::Letter: scanWord(token); break;
  case Start::Quote: scanText(token); break;
  case Start::Digit: scanNumber(token); break;
  case Start::Dot:
    if (isDigit(at_[1]))
      scanNumber(token);
    else
      scanSymbol(token, at_[1] == '.' ? 2 : 1);
    break;
  case Start::Less: scanSymbol(token, at_[1] == '=' || at_[1] == '-' ? 2 : 1); break;
  case Start::EqualsMayFollow: scanSymbol(token, at_[1] == '=' ? 2 : 1); break;
  case Start::Zero:
    if (at_ != end_) scanSymbol(token, 1);
    break;
  default: scanSymbol(token, 1);
  }
  token.length = offset() - token.offset;
  return token;
}

void Lexer::startLine() {
  ++line_;
  lineStart_ = at_;
}

void Lexer::skipToToken() {
  for (;;) {
    switch (startOf(*at_)) {
    case Start::Blank: ++at_; break;
    case Start::Newline:
      ++at_;
      startLine();
      break;
    case Start::Hash: skipLineComment(at_ + 1); break;
    case Start::Slash:
      if (at_[1] == '/')
        skipLineComment(at_ + 2);
      else if (at_[1] == '*')
        skipBlockComment();
      else
        return;
      break;
    default: return;
    }
  }
}

void Lexer::skipLineComment(const char* text) {
  const QuindleSpan start{QuindleSpan::Role::Comment, line_, columnOf(at_), offset(), 0};
  if (*text == ' ') ++text;
  const void* const newline = std::memchr(text, '\n', static_cast<std::size_t>(end_ - text));
  at_ = newline ? static_cast<const char*>(newline) : end_;
  comments.push_back({between(text, at_), line_, start.offset});
  recordComment(start);
}

void Lexer::skipBlockComment() {
  constexpr std::size_t markLength = 2;
  const QuindleSpan start{QuindleSpan::Role::Comment, line_, columnOf(at_), offset(), 0};
  const std::string_view rest = between(at_ + markLength, end_);
  const std::size_t length = rest.find("*/");
  const bool closed = length != std::string_view::npos;
  const char* const behind = closed ? rest.data() + length + markLength : end_;
  countLinesTo(behind);
  at_ = behind;
  recordComment(start);
  if (closed)
    comments.push_back({rest.substr(0, length), start.line, start.offset});
  else
    faults_.at(Diag::Severity::Error, "This comment is never closed.", start.line, start.column);
}

/// Records the comment that starts there and ends here.
void Lexer::recordComment(QuindleSpan comment) {
  comment.length = offset() - comment.offset;
  if (spans_) spans_->addComment(comment);
}

void Lexer::countLinesTo(const char* end) {
  while (const void* newline = std::memchr(at_, '\n', static_cast<std::size_t>(end - at_))) {
    at_ = static_cast<const char*>(newline) + 1;
    startLine();
  }
}

void Lexer::scanWord(Token& token) {
  const char* const begin = at_;
  while (isWordByte(*at_)) ++at_;
  token.kind = Token::Kind::Word;
  token.text = between(begin, at_);
}

void Lexer::scanNumber(Token& token) {
  const char* const begin = at_;
  const auto skipDigits = [this] {
    while (isDigit(*at_)) ++at_;
  };
  skipDigits();
  if (*at_ == '.' && isDigit(at_[1])) {
    ++at_;
    skipDigits();
  }
  if (*at_ == 'e' || *at_ == 'E') {
    const bool isSigned = at_[1] == '+' || at_[1] == '-';
    const char* const digits = at_ + (isSigned ? 2 : 1);
    if (isDigit(*digits)) {
      at_ = digits;
      skipDigits();
    }
  }
  token.kind = Token::Kind::Number;
  token.text = between(begin, at_);
}

void Lexer::scanText(Token& token) {
  token.kind = Token::Kind::Text;
  const char* const begin = ++at_;
  skipPlainText();
  token.text = between(begin, at_);
  if (*at_ == '\\') {
    turn_ ^= 1U;
    std::string& out = resolved_[turn_];
    out = token.text;
    while (*at_ == '\\') {
      resolveEscape(out);
      const char* const plain = at_;
      skipPlainText();
      out.append(plain, at_);
    }
    token.text = out;
  }
  if (*at_ == '"')
    ++at_;
  else if (*at_ == '\n')
    faults_.at(Diag::Severity::Error, "This text is never closed.", token.line, token.column);
}

void Lexer::skipPlainText() {
  while (*at_ != '"' && *at_ != '\\' && *at_ != '\n' && (*at_ != '\0' || at_ != end_)) ++at_;
}

/// From the backslash to behind the byte it takes.
void Lexer::resolveEscape(std::string& out) {
  ++at_;
  if (at_ == end_) return;
  const char c = *at_;
  switch (c) {
  case '"':
  case '\\': out += c; break;
  case 'n': out += '\n'; break;
  case 't': out += '\t'; break;
  default:
    faults_.at(Diag::Severity::Warning, std::string("Unknown escape \\") + c + " - taken literally.", line_,
               columnOf(at_));
    out += c;
  }
  ++at_;
  if (c == '\n') startLine();
}

void Lexer::scanSymbol(Token& token, std::size_t length) {
  token.kind = Token::Kind::Symbol;
  token.text = {at_, length};
  at_ += length;
}

} // namespace Zamt
