#include "quindle/text/QuindleSpans.h"

#include "quindle/text/FileReader.h"
#include "quindle/text/SpanRecorder.h"

#include <algorithm>
#include <utility>

namespace Zamt {

std::vector<QuindleSpan> quindleSpans(const std::string& text) {
  QuindleDocument doc;
  Diag diag;
  SpanRecorder recorder;
  FileReader reader(text, {}, doc, diag, FaultSink::Keep::UpToFirstError, &recorder);
  reader.read();
  reader.skipRest();
  return recorder.takeSpans();
}

const QuindleSpan* quindleSpanAt(const std::vector<QuindleSpan>& spans, std::int32_t line,
                                 std::int32_t column) {
  auto next =
      std::upper_bound(spans.begin(), spans.end(), std::pair(line, column),
                       [](const std::pair<std::int32_t, std::int32_t>& place, const QuindleSpan& span) {
                         return place < std::pair(span.line, span.column);
                       });
  // Where a placeholder ends the text around it may go on.
  while (next != spans.begin()) {
    const QuindleSpan& span = *--next;
    if (span.line != line) return nullptr;
    if (static_cast<std::uint64_t>(column - span.column) < span.length) return &span;
    if (span.role != QuindleSpan::Role::Placeholder) return nullptr;
  }
  return nullptr;
}

} // namespace Zamt
