#include "quindle/text/QuindleSpans.h"

#include "tests/support/spanFaults.h"
#include "tests/text/randomText.h"

#include <gtest/gtest.h>

#include <array>

namespace Zamt {
namespace {

using Role = QuindleSpan::Role;

/// What begins within `text`, a role and its bytes each, where `text` stands between two others.
std::string spansOf(const std::string& text, const std::string& before = {}, const std::string& behind = {}) {
  static constexpr std::array<const char*, 19> roles{
      "Keyword",     "Setting",  "Parameter",    "Type",     "Variable", "Object", "Target",
      "Reference",   "Function", "ArgumentName", "Choice",   "Text",     "Number", "Operator",
      "Punctuation", "Comment",  "Placeholder",  "Argument", "Unread"};
  const std::string whole = before + text + behind;
  std::string out;
  for (const QuindleSpan& span : quindleSpans(whole)) {
    if (span.offset < before.size() || span.offset >= before.size() + text.size()) continue;
    out += (out.empty() ? "" : " | ") + std::string(roles.at(static_cast<std::size_t>(span.role))) + ' ' +
           whole.substr(span.offset, span.length);
  }
  return out;
}

using Case = std::pair<const char*, const char*>;

TEST(QuindleSpans, GiveEveryWordOfAStepItsRole) {
  const Case cases[] = {
      {"let x = -1.5 create b = \"C/I\"",
       "Keyword let | Variable x | Operator = | Operator - | Number 1.5 | Keyword create | Object b | "
       "Operator = | Text \"C/I\""},
      {"set a.b = true connect a.b <- c",
       "Keyword set | Target a.b | Operator = | Keyword true | Keyword connect | Target a.b | Operator <- | "
       "Target c"},
      {"classify into as as 2 colour red", "Keyword classify | Keyword into | Reference as | Keyword as | "
                                           "Number 2 | Keyword colour | Choice red"},
      {"select not f(a, n: g() <= -2) or h",
       "Keyword select | Keyword not | Function f | Punctuation ( | Argument a | Reference a | Punctuation , "
       "| Argument n: g() <= -2 | ArgumentName n | Punctuation : | Function g | Punctuation ( | Punctuation "
       ") "
       "| Operator <= | Operator - | Number 2 | Punctuation ) | Keyword or | Reference h"},
      {"call a.\"b c\" run \"O\"((d) and e)",
       "Keyword call | Target a. | Text \"b c\" | Keyword run | Text \"O\" | Punctuation ( | "
       "Argument (d) and e | Punctuation ( | Reference d | Punctuation ) | Keyword and | Reference e | "
       "Punctuation )"},
      {"if a { } else { for each i in l { } }",
       "Keyword if | Reference a | Punctuation { | Punctuation } | Keyword else | Punctuation { | "
       "Keyword for | Keyword each | Variable i | Keyword in | Reference l | Punctuation { | Punctuation } | "
       "Punctuation }"},
      {"report \"{a}{} {b\\\"{c} {\"",
       "Keyword report | Text \"{a}{} {b\\\"{c} {\" | Placeholder a | Placeholder  | Placeholder b\\\"{c"},
      {"# c\nreport /* d\n*/ \"x\" // e",
       "Comment # c | Keyword report | Comment /* d\n*/ | Text \"x\" | Comment // e"},
  };
  for (const auto& [text, spans] : cases)
    EXPECT_EQ(spansOf(text, "quindle \"a\" { on run {\n", "\n} }"), spans);
}

TEST(QuindleSpans, GoOnInATextThatIsFaultyToItsEnd) {
  const Case cases[] = {
      {"quindle \"a\" { tags \"t\", \"u\" enabled false param p : T.u = pick [0 .. (b, 1)] \"h\" on key "
       "\"K\" { } }",
       "Keyword quindle | Text \"a\" | Punctuation { | Setting tags | Text \"t\" | Punctuation , | Text "
       "\"u\" "
       "| Setting enabled | Keyword false | Keyword param | Parameter p | Punctuation : | Type T.u | "
       "Operator = | Choice pick | Punctuation [ | Number 0 | Punctuation .. | Punctuation ( | Choice b | "
       "Punctuation , | Number 1 | Punctuation ) | Punctuation ] | Text \"h\" | Keyword on | Keyword key | "
       "Text \"K\" | Punctuation { | Punctuation } | Punctuation }"},
      {"quindle \"a\" { on run { let x 3 oh let y f(",
       "Keyword quindle | Text \"a\" | Punctuation { | Keyword on | Keyword run | Punctuation { | Keyword "
       "let "
       "| Variable x | Number 3 | Unread oh | Keyword let | Unread y | Unread f | Punctuation ("},
      {"quindle \"a\" { on run { select f(a, ",
       "Keyword quindle | Text \"a\" | Punctuation { | Keyword on | Keyword run | Punctuation { | "
       "Keyword select | Function f | Punctuation ( | Argument a | Reference a | Punctuation ,"},
      {"quindle \"a\" { icon \"x\n/* never", "Keyword quindle | Text \"a\" | Punctuation { | Setting icon | "
                                             "Text \"x | Comment /* never"},
      {"quindle \"a\" { } x \"y\" # c",
       "Keyword quindle | Text \"a\" | Punctuation { | Punctuation } | Unread x "
       "| Text \"y\" | Comment # c"},
      {"what \"is\" 5", "Unread what | Text \"is\" | Number 5"},
      {"", ""},
  };
  for (const auto& [text, spans] : cases) EXPECT_EQ(spansOf(text), spans);
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
