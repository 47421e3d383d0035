#include "host/verbs/strayComments.h"

#include "quindle/core/NestedSteps.h"
#include "quindle/core/Tree.h"

#include <algorithm>
#include <map>
#include <optional>
#include <string_view>

namespace Zamt::Host {

namespace {

struct SourceComment {
  int line = 0;
  std::optional<std::size_t> trigger; ///< In whose block it stands, counted from 0.
};

/// Finds the comments of a text that is known to be good: just enough of the language to tell comments from
/// texts, and to know the block around each.
class CommentScan {
public:
  explicit CommentScan(const std::string& text) : rest_(text) {}

  void run() {
    while (!rest_.empty() && textBehindLine == 0) step();
  }

  std::vector<SourceComment> comments;
  int textBehindLine = 0;

private:
  /// The braces around the steps of a trigger: those of the file and its own.
  static constexpr int triggerDepth = 2;

  void step();
  void skipText();
  void take(std::size_t length);
  void takeComment(std::size_t mark, std::size_t length);

  std::string_view rest_;
  int line_ = 1;
  int depth_ = 0;
  std::size_t triggers_ = 0; ///< Begun so far.
  bool closed_ = false;      ///< The brace that ends the file was passed.
};

void CommentScan::step() {
  const char c = rest_.front();
  if (c == '#' || rest_.starts_with("//")) return takeComment(c == '#' ? 1 : 2, rest_.find('\n'));
  if (rest_.starts_with("/*")) {
    const std::size_t end = rest_.find("*/", 2);
    return takeComment(2, end == std::string_view::npos ? end : end + 2);
  }
  if (closed_ && std::string_view(" \t\r\n").find(c) == std::string_view::npos) textBehindLine = line_;
  if (c == '"') return skipText();
  if (c == '{' && ++depth_ == triggerDepth) ++triggers_;
  if (c == '}' && --depth_ == 0) closed_ = true;
  take(1);
}

/// From one quote to behind the other.
void CommentScan::skipText() {
  std::size_t end = 1;
  while (end < rest_.size() && rest_[end] != '"') end += rest_[end] == '\\' ? 2 : 1;
  take(end + 1);
}

void CommentScan::take(std::size_t length) {
  const std::string_view taken = rest_.substr(0, length);
  line_ += static_cast<int>(std::count(taken.begin(), taken.end(), '\n'));
  rest_.remove_prefix(taken.size());
}

void CommentScan::takeComment(std::size_t mark, std::size_t length) {
  std::string_view text = rest_.substr(mark, length == std::string_view::npos ? length : length - mark);
  if (mark == 2 && text.ends_with("*/")) text.remove_suffix(2);
  if (text.find_first_not_of(" \t\r\n") != std::string_view::npos) {
    comments.push_back({line_, std::nullopt});
    if (depth_ >= triggerDepth) comments.back().trigger = triggers_ - 1;
  }
  take(length);
}

/// The trigger in which the comments that began on a line are kept. Those of one line are always kept
/// together.
std::map<int, std::size_t> keptComments(const QuindleDocument& document) {
  std::map<int, std::size_t> kept;
  const auto childrenOf = [](const QuindleStep& step) { return NestedSteps(step); };
  for (std::size_t i = 0; i < document.triggers.size(); ++i)
    for (const QuindleStep& step : document.triggers[i].steps)
      tree::walk(step, childrenOf, [&](const QuindleStep& inner, const QuindleStep*, std::size_t) {
        if (inner.kind == QuindleStep::Kind::Comment) kept.emplace(inner.line, i);
      });
  return kept;
}

} // namespace

Leftovers findLeftovers(const std::string& text, const QuindleDocument& document) {
  CommentScan scan(text);
  scan.run();
  const std::map<int, std::size_t> kept = keptComments(document);
  Leftovers leftovers{{}, scan.textBehindLine};
  for (const SourceComment& comment : scan.comments) {
    const auto found = kept.find(comment.line);
    if (found == kept.end())
      leftovers.comments.push_back({comment.line, nullptr});
    else if (comment.trigger != found->second)
      leftovers.comments.push_back({comment.line, &document.triggers[found->second]});
  }
  return leftovers;
}

} // namespace Zamt::Host
