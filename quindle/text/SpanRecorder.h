#pragma once

#include "quindle/text/Lexer.h"
#include "quindle/text/QuindleSpans.h"

#include <cstddef>
#include <string_view>
#include <vector>

namespace Zamt {

/// Collects the spans of a text while it is read. Words and marks come in when they are taken, in the order
/// of the text; comments when they are scanned, which is earlier.
class SpanRecorder {
public:
  void addToken(const Token& token, QuindleSpan::Role role);
  void addComment(const QuindleSpan& comment) { comments_.push_back(comment); }

  /// Adds what stands in braces in the text that was added last. `written` is that text with its quotes.
  void addPlaceholders(std::string_view written);

  /// Begins a span at a token that is still to be added, and ends one behind what was added last.
  std::size_t openArgument(const Token& first);
  void closeArgument(std::size_t opened);

  std::vector<QuindleSpan> takeSpans();

private:
  std::vector<QuindleSpan> spans_;
  std::vector<QuindleSpan> comments_;
  std::uint64_t end_ = 0; ///< Behind the token that was added last.
};

} // namespace Zamt
