#include "quindle/text/QuindleSpans.h"

#include "tests/support/goldenCases.h"
#include "tests/support/spanFaults.h"
#include "tests/text/randomText.h"

#include <array>

namespace Zamt {
namespace {

/// A line each: its role and its bytes.
std::string spansOf(const std::string& text) {
  static constexpr std::array<const char*, 19> roles{
      "Keyword",     "Setting",  "Parameter",    "Type",     "Variable", "Object", "Target",
      "Reference",   "Function", "ArgumentName", "Choice",   "Text",     "Number", "Operator",
      "Punctuation", "Comment",  "Placeholder",  "Argument", "Unread"};
  std::string out;
  for (const QuindleSpan& span : quindleSpans(text))
    out += std::string(roles.at(static_cast<std::size_t>(span.role))) + ' ' +
           text.substr(span.offset, span.length) + '\n';
  return out;
}

TEST(QuindleSpans, GiveEveryWordTheRoleOfTheGoldenDocument) {
  Testing::expectCases("text/golden/spans.md", spansOf);
}

TEST(QuindleSpans, LeaveOnlyWhiteSpaceOutOfAnyText) {
  constexpr unsigned texts = 300;
  for (unsigned seed = 0; seed < texts; ++seed) {
    const std::string whole = Testing::RandomText::make(seed);
    const std::string cut = whole.substr(0, whole.size() * (seed % 10) / 10);
    std::string gapped = whole;
    gapped.erase(whole.size() / 3, 1 + seed % 7);
    for (const std::string& text : {whole, cut, gapped}) EXPECT_EQ(Testing::spanFault(text), "") << text;
  }
}

TEST(QuindleSpans, TellWhatStandsAtAPlace) {
  const std::string text = "quindle \"a\" { on run { select f(aa, 1)\n  report \"x{b} y\\\nz\" } }";
  const std::vector<QuindleSpan> spans = quindleSpans(text);
  const std::tuple<std::int32_t, std::int32_t, std::string> cases[] = {
      {1, 1, "quindle"},
      {1, 7, "quindle"},
      {1, 8, ""},
      {1, 31, "f"},
      {1, 32, "("},
      {1, 33, "aa"},
      {1, 34, "aa"},
      {1, 35, ","},
      {1, 39, ""},
      {2, 2, ""},
      {2, 10, "\"x{b} y\\\nz\""},
      {2, 13, "b"},
      {2, 15, "\"x{b} y\\\nz\""},
      {3, 1, ""},
      {3, 4, "}"},
      {9, 9, ""},
      {0, 0, ""},
  };
  for (const auto& [line, column, expected] : cases) {
    const QuindleSpan* const span = quindleSpanAt(spans, line, column);
    EXPECT_EQ(span ? text.substr(span->offset, span->length) : "", expected) << line << ':' << column;
  }
}

} // namespace
} // namespace Zamt
