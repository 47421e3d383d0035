#pragma once

#include "quindle/core/Export.h"

#include <cstdint>
#include <string>
#include <vector>

/// @file
/// Where the words of a Quindle's text stand and what each is there: what an editor colours, renames and
/// underlines. The records of a document hold where a thing begins; these are beside them and hold its
/// extent.
namespace Zamt {

/// A stretch of a text with one meaning.
struct QuindleSpan {
  /// What stands there.
  enum class Role : std::int32_t {
    Keyword = 0,   ///< A word of the language: "quindle", "param", what begins a step, "and", "true".
    Setting = 1,   ///< The word of a setting, as "description".
    Parameter = 2, ///< The name of a "param".
    Type = 3,      ///< The type of a "param".
    Variable = 4,  ///< The name that a "let" or a "for each" makes.
    Object = 5,    ///< The name that a "create" makes.
    Target = 6,    ///< What "set", "connect" and "call" name: an object with or without a slot or an action.
    Reference = 7, ///< A bare word in an expression: a parameter, a "let" or a field.
    Function = 8,  ///< The name of a condition or a function that is called.
    ArgumentName = 9, ///< The name in front of an argument and its ":".
    Choice = 10,      ///< A bare word where a value stands: "pick", one of a few choices, a name.
    Text = 11,        ///< A text with its quotes and escapes.
    Number = 12,      ///< A number without its sign.
    Operator = 13,    ///< "=", "<-", "-" or a comparison.
    Punctuation = 14, ///< A bracket, a brace, "," or another mark.
    Comment = 15,     ///< A comment with its marks, whether it has a place among the steps or not.
    Placeholder = 16, ///< What stands between the braces in the Text of a "report"; may be empty.
    Argument = 17,    ///< A whole argument of a call or a "run", with its name.
    Unread = 18       ///< A word that the reader passed over, behind a fault or behind the end.
  };

  Role role = Role::Unread; ///< What stands there.
  std::int32_t line = 0;    ///< Of its first byte, from 1.
  std::int32_t column = 0;  ///< Likewise, in bytes.
  std::uint64_t offset = 0; ///< Of its first byte in the text.
  std::uint64_t length =
      0; ///< In bytes. A comment, and a text with an escaped line end, may take several lines.
};

/// The spans of all words and marks of a text, faulty or not, in the order in which they begin; white space
/// has none. A Placeholder lies in the span of its Text, and an Argument around those of its words, which
/// stand behind it in the list; otherwise no two overlap. Roles are those that the reader found, so behind a
/// fault they may be others than were meant. Lets std::bad_alloc through.
QUINDLE_API std::vector<QuindleSpan> quindleSpans(const std::string& text);

/// The innermost of the spans of a text that holds the byte at that line and column, or null. Of a span of
/// several lines only the first counts. The place of a diagnostic thus gives the name, text, number or mark
/// that it is about.
QUINDLE_API const QuindleSpan* quindleSpanAt(const std::vector<QuindleSpan>& spans, std::int32_t line,
                                             std::int32_t column);

} // namespace Zamt
