#include "quindle/text/SpanRecorder.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace Zamt {

using Role = QuindleSpan::Role;

void SpanRecorder::addToken(const Token& token, Role role) {
  spans_.push_back({role, token.line, token.column, token.offset, token.length});
  end_ = token.offset + token.length;
}

void SpanRecorder::addPlaceholders(std::string_view written) {
  QuindleSpan place = spans_.back();
  place.role = Role::Placeholder;
  std::size_t behind = 0; // the last placeholder
  for (std::size_t at = 0; at < written.size(); ++at) {
    const char c = written[at];
    ++place.column;
    ++place.offset;
    if (c == '\n') {
      ++place.line;
      place.column = 1;
    }
    if (c != '{' || at < behind) continue;
    const std::size_t close = written.find('}', at);
    if (close == std::string_view::npos) return;
    place.length = close - at - 1;
    spans_.push_back(place);
    behind = close;
  }
}

std::size_t SpanRecorder::openArgument(const Token& first) {
  spans_.push_back({Role::Argument, first.line, first.column, first.offset, 0});
  return spans_.size() - 1;
}

void SpanRecorder::closeArgument(std::size_t opened) {
  QuindleSpan& argument = spans_[opened];
  argument.length = std::max(end_, argument.offset) - argument.offset;
}

std::vector<QuindleSpan> SpanRecorder::takeSpans() {
  std::erase_if(spans_,
                [](const QuindleSpan& span) { return span.role == Role::Argument && span.length == 0; });
  std::vector<QuindleSpan> all;
  all.reserve(spans_.size() + comments_.size());
  std::merge(spans_.begin(), spans_.end(), comments_.begin(), comments_.end(), std::back_inserter(all),
             [](const QuindleSpan& a, const QuindleSpan& b) { return a.offset < b.offset; });
  return all;
}

} // namespace Zamt
