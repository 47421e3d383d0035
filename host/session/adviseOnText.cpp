#include "host/session/adviseOnText.h"

#include "quindle/check/adviseQuindle.h"
#include "quindle/text/QuindleSpans.h"

#include <algorithm>
#include <string_view>
#include <vector>

namespace Zamt::Host {

namespace {

using Role = QuindleSpan::Role;

/// The words that a sentence quotes before it says what to write. Those with a line of their own are steps
/// elsewhere.
std::vector<std::string_view> quotedWords(std::string_view message) {
  message = message.substr(0, message.find(". "));
  std::vector<std::string_view> words;
  for (std::size_t open = 0; (open = message.find('"', open)) != std::string_view::npos;) {
    const std::size_t close = message.find('"', open + 1);
    if (close == std::string_view::npos) break;
    if (!message.substr(close + 1).starts_with(" on line "))
      words.push_back(message.substr(open + 1, close - open - 1));
    open = close + 1;
  }
  return words;
}

bool isOfName(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '_';
}

bool isSign(char c) { return std::string_view("&|!=<>").find(c) != std::string_view::npos; }

/// Whether a word that ends in `a` would go on with `b`.
bool goesOn(char a, char b) { return (isOfName(a) && isOfName(b)) || (isSign(a) && isSign(b)); }

/// Where `word` stands whole in a text; npos if it does not.
std::size_t findWhole(std::string_view text, std::string_view word) {
  for (std::size_t at = 0; !word.empty() && (at = text.find(word, at)) != std::string_view::npos; ++at) {
    const std::size_t end = at + word.size();
    if ((at == 0 || !goesOn(text[at - 1], word.front())) &&
        (end == text.size() || !goesOn(word.back(), text[end])))
      return at;
  }
  return std::string_view::npos;
}

/// Finds the words that sentences quote.
class WordFinder {
public:
  explicit WordFinder(const std::string& text) : text_(text), spans_(quindleSpans(text)) {}

  /// The column of the word that a sentence about this place quotes, or the place's own.
  std::int32_t columnOf(const Diag::Entry& entry) const {
    const std::vector<std::string_view> words = quotedWords(entry.message);
    const QuindleSpan* const there = quindleSpanAt(spans_, entry.line, entry.column);
    if (entry.column > 0 && (there == nullptr || there->role != Role::Keyword))
      return there == nullptr ? entry.column : columnIn(*there, words, entry.column);
    for (auto span = firstBehind(entry); span != spans_.end() && span->line == entry.line; ++span)
      if (const std::int32_t column = columnIn(*span, words, 0); column > 0) return column;
    return entry.column;
  }

private:
  std::vector<QuindleSpan>::const_iterator firstBehind(const Diag::Entry& entry) const {
    return std::partition_point(spans_.begin(), spans_.end(), [&](const QuindleSpan& span) {
      return std::pair(span.line, span.column) < std::pair(entry.line, entry.column);
    });
  }

  std::int32_t columnIn(const QuindleSpan& span, const std::vector<std::string_view>& words,
                        std::int32_t otherwise) const {
    if (span.role == Role::Keyword || span.role == Role::Comment || span.role == Role::Argument)
      return otherwise;
    const std::string_view written = std::string_view(text_).substr(span.offset, span.length);
    for (const std::string_view word : words) {
      const std::size_t at = findWhole(written, word);
      if (at == std::string_view::npos || written.substr(0, at).find('\n') != std::string_view::npos)
        continue;
      const bool whole = at == 1 && written.size() == word.size() + 2; // the text, which begins at its quote
      return span.column + (whole ? 0 : static_cast<std::int32_t>(at));
    }
    return otherwise;
  }

  const std::string& text_;
  const std::vector<QuindleSpan> spans_;
};

} // namespace

void adviseOnText(const QuindleDocument& document, const std::string& text, Diag& diag) {
  const std::size_t before = diag.entries.size();
  adviseQuindle(document, diag);
  if (diag.entries.size() == before) return;
  const WordFinder finder(text);
  std::int32_t from = 0;
  std::int32_t to = 0;
  for (std::size_t i = before; i < diag.entries.size(); ++i) {
    Diag::Entry& entry = diag.entries[i];
    const bool wording = i > before && entry.severity == Diag::Severity::Note &&
                         entry.line == diag.entries[i - 1].line && entry.column == from;
    if (!wording) {
      from = entry.column;
      to = finder.columnOf(entry);
    }
    entry.column = to;
  }
}

} // namespace Zamt::Host
