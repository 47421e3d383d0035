#include "quindle/text/readValue.h"

#include "quindle/core/Numbers.h"

#include <vector>

namespace Zamt {

namespace {

/// A tuple whose ")" is still to come. The value it points to stays where it is: its list only grows while
/// none of its members is being read.
struct OpenTuple {
  QuindleValue* tuple;
  std::size_t minusSigns; ///< In front of it.
};

void readSimpleValue(TokenReader& tokens, QuindleValue& out) {
  using Kind = QuindleValue::Kind;
  using Role = QuindleSpan::Role;
  const Token& token = tokens.current();
  switch (token.kind) {
  case Token::Kind::Number: {
    std::size_t length = 0;
    out.kind = Kind::Number;
    out.numberValue = readNumber(token.text, length);
    out.textValue = token.text;
    break;
  }
  case Token::Kind::Text:
    out.kind = Kind::Text;
    out.textValue = token.text;
    break;
  case Token::Kind::Word:
    if (token.text == "true" || token.text == "false") {
      out.kind = Kind::Boolean;
      out.boolValue = token.text == "true";
    } else {
      out.kind = Kind::Identifier;
      out.textValue = token.text;
    }
    break;
  case Token::Kind::End:
  case Token::Kind::Symbol: tokens.failFound("Expected a value but found "); return;
  }
  tokens.advance(out.kind == Kind::Boolean ? Role::Keyword : Role::Choice);
}

// All signs are put in front at once: one after the other would cost the square of their number.
void negate(TokenReader& tokens, QuindleValue& value, std::size_t times) {
  if (value.kind == QuindleValue::Kind::Number) {
    if (times % 2 != 0) value.numberValue = -value.numberValue;
    value.textValue.insert(0, times, '-');
    return;
  }
  for (std::size_t i = 0; i < times; ++i) tokens.fail("Only a number can be negated here.");
}

std::size_t readMinusSigns(TokenReader& tokens) {
  std::size_t count = 0;
  while (tokens.acceptSymbol("-")) ++count;
  return count;
}

/// Goes on behind a member: to the next one, which is returned, or to the end of all tuples that end here.
QuindleValue* nextMember(TokenReader& tokens, std::vector<OpenTuple>& open) {
  while (!open.empty()) {
    const OpenTuple top = open.back();
    if (tokens.acceptSymbol(",")) return &top.tuple->items.emplace_back();
    tokens.expectSymbol(")");
    negate(tokens, *top.tuple, top.minusSigns);
    open.pop_back();
  }
  return nullptr;
}

} // namespace

void readValue(TokenReader& tokens, QuindleValue& out) {
  std::vector<OpenTuple> open;
  for (QuindleValue* target = &out; target;) {
    const std::size_t minusSigns = readMinusSigns(tokens);
    if (tokens.acceptSymbol("(")) {
      target->kind = QuindleValue::Kind::Tuple;
      if (!tokens.acceptSymbol(")")) {
        open.push_back({target, minusSigns});
        target = &target->items.emplace_back();
        continue;
      }
    } else {
      readSimpleValue(tokens, *target);
    }
    negate(tokens, *target, minusSigns);
    target = nextMember(tokens, open);
  }
}

} // namespace Zamt
