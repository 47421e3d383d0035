#include "quindle/text/ExpressionReader.h"

#include "quindle/text/readValue.h"

#include <utility>

namespace Zamt {

namespace {

using Kind = QuindleExpr::Kind;
using Role = QuindleSpan::Role;

bool isReserved(std::string_view word) {
  return word == "true" || word == "false" || word == "not" || word == "and" || word == "or";
}

bool isComparison(const Token& token) {
  if (token.kind != Token::Kind::Symbol) return false;
  const char first = token.text[0];
  if (token.text.size() == 1) return first == '<' || first == '>';
  return token.text[1] == '=';
}

/// Makes `node` a node of `kind` with what it was as its first operand.
void wrap(QuindleExpr& node, Kind kind) {
  QuindleExpr first = std::move(node);
  node = {};
  node.kind = kind;
  node.line = first.line;
  node.column = first.column;
  node.operands.reserve(2);
  node.operands.push_back(std::move(first));
}

void setPosition(QuindleExpr& node, const Token& token) {
  node.line = token.line;
  node.column = token.column;
}

} // namespace

void ExpressionReader::readExpression(QuindleExpr& out) {
  open(out);
  read();
}

void ExpressionReader::readArguments(std::vector<QuindleExpr>& args, std::vector<std::string>& names) {
  if (!tokens_.expectSymbol("(") || tokens_.acceptSymbol(")")) return;
  openArgument(args, names);
  read();
}

void ExpressionReader::open(QuindleExpr& root) {
  open_.emplace_back();
  open_.back().root = open_.back().term = &root;
  startFactor(root);
}

void ExpressionReader::openArgument(std::vector<QuindleExpr>& args, std::vector<std::string>& names) {
  const std::size_t span = tokens_.openArgument();
  std::string& name = names.emplace_back();
  if (tokens_.current().kind == Token::Kind::Word && tokens_.lookahead().isSymbol(":")) {
    name = tokens_.current().text;
    tokens_.advance(Role::ArgumentName);
    tokens_.advance(Role::Punctuation);
  }
  open(args.emplace_back());
  open_.back().span = span;
  open_.back().args = &args;
  open_.back().names = &names;
}

/// Parentheses right behind one another hold the same node, and wait as one: a million cost no memory.
void ExpressionReader::openParenthesis() {
  Open& top = open_.back();
  const bool isParenthesis = open_.size() > 1 && top.args == nullptr;
  if (!isParenthesis || top.atom != top.root) return open(*top.atom);
  ++top.parentheses;
  startFactor(*top.root);
}

/// Reads the "not"s in front of a factor that goes into `node`.
void ExpressionReader::startFactor(QuindleExpr& node) {
  QuindleExpr* inner = &node;
  while (tokens_.isWord("not")) {
    inner->kind = Kind::Not;
    setPosition(*inner, tokens_.current());
    tokens_.advance(Role::Keyword);
    inner = &inner->operands.emplace_back();
  }
  open_.back().factor = open_.back().atom = inner;
}

/// Reads until everything that is open has been closed. Each turn reads one atom and what stands behind it.
void ExpressionReader::read() {
  while (!open_.empty()) {
    bool complete = readAtom();
    while (complete && !readOperator()) complete = closeBracket();
  }
}

/// Reads one atom; false if it is a bracket, whose content was opened instead.
bool ExpressionReader::readAtom() {
  QuindleExpr& atom = *open_.back().atom;
  const Token& token = tokens_.current();
  if (token.isSymbol("(")) {
    tokens_.advance(Role::Punctuation);
    openParenthesis();
    return false;
  }
  setPosition(atom, token);
  if (token.kind == Token::Kind::Word && !isReserved(token.text)) return readWordAtom(atom);
  atom.kind = Kind::Literal;
  readValue(tokens_, atom.value);
  return true;
}

bool ExpressionReader::readWordAtom(QuindleExpr& atom) {
  atom.name = tokens_.current().text;
  tokens_.advance(tokens_.lookahead().isSymbol("(") ? Role::Function : Role::Reference);
  if (!tokens_.acceptSymbol("(")) {
    atom.kind = Kind::Reference;
    return true;
  }
  atom.kind = Kind::Call;
  if (tokens_.acceptSymbol(")")) return true;
  openArgument(atom.operands, atom.argNames);
  return false;
}

/// Goes on behind an atom to the next one of the same brackets; false if no operator leads there.
bool ExpressionReader::readOperator() {
  Open& top = open_.back();
  if (top.atom == top.factor && isComparison(tokens_.current())) {
    wrap(*top.factor, Kind::Compare);
    top.factor->op = tokens_.current().text;
    top.atom = &top.factor->operands.emplace_back();
    tokens_.advance(Role::Operator);
    return true;
  }
  if (tokens_.acceptWord("and")) {
    if (!top.isAnd) wrap(*top.term, Kind::And);
    top.isAnd = true;
    startFactor(top.term->operands.emplace_back());
    return true;
  }
  if (!tokens_.acceptWord("or")) return false;
  if (!top.isOr) wrap(*top.root, Kind::Or);
  top.isOr = true;
  top.isAnd = false;
  top.term = &top.root->operands.emplace_back();
  startFactor(*top.term);
  return true;
}

/// The expression at hand is complete. True if it was the end of an atom of the brackets around it, false if
/// another atom is to be read or nothing is left open.
bool ExpressionReader::closeBracket() {
  const Open closed = open_.back();
  if (closed.parentheses > 1) {
    tokens_.expectSymbol(")");
    Open& next = open_.back() = {};
    next.parentheses = closed.parentheses - 1;
    next.root = next.term = next.factor = next.atom = closed.root;
    return true;
  }
  open_.pop_back();
  const bool isArgument = closed.args != nullptr;
  if (isArgument) tokens_.closeArgument(closed.span);
  if (isArgument && tokens_.acceptSymbol(",")) {
    openArgument(*closed.args, *closed.names);
    return false;
  }
  if (isArgument || !open_.empty()) tokens_.expectSymbol(")");
  return !open_.empty();
}

} // namespace Zamt
