#pragma once

#include "quindle/core/QuindleDocument.h"
#include "quindle/text/TokenReader.h"

#include <string>
#include <vector>

namespace Zamt {

/// Reads expressions, straight into the tree they become. Nested brackets wait on a stack of its own, which
/// serves one expression after the other.
///
/// From loose to tight: "or", "and", "not", one comparison, and atoms: a literal, a word, a call, or an
/// expression in parentheses, which leave no node.
class ExpressionReader {
public:
  explicit ExpressionReader(TokenReader& tokens) : tokens_(tokens) {}

  /// Reads into `out`, which is a new node. What is no expression is reported and becomes a Literal without
  /// value.
  void readExpression(QuindleExpr& out);

  /// Reads "(", arguments and ")", and appends to both lists in step.
  void readArguments(std::vector<QuindleExpr>& args, std::vector<std::string>& names);

private:
  /// An expression being read, between the brackets that hold it. The nodes it points to stay where they are:
  /// a list of operands only grows when its last one is complete.
  struct Open {
    std::size_t parentheses = 1;   ///< How many stand directly inside one another here.
    QuindleExpr* root = nullptr;   ///< What is between the brackets; the "or", once there is one.
    QuindleExpr* term = nullptr;   ///< The operand of the "or"; the "and", once there is one.
    QuindleExpr* factor = nullptr; ///< The operand of the "and", behind its "not"s.
    QuindleExpr* atom = nullptr;   ///< The operand of the comparison, or the factor itself.
    bool isOr = false;
    bool isAnd = false;
    std::vector<QuindleExpr>* args = nullptr; ///< Of the call whose argument this is; null in parentheses.
    std::vector<std::string>* names = nullptr;
    std::size_t span = 0; ///< Of the argument.
  };

  void read();
  void open(QuindleExpr& root);
  void openParenthesis();
  void openArgument(std::vector<QuindleExpr>& args, std::vector<std::string>& names);
  void startFactor(QuindleExpr& node);
  bool readAtom();
  bool readWordAtom(QuindleExpr& atom);
  bool readOperator();
  bool closeBracket();

  TokenReader& tokens_;
  std::vector<Open> open_;
};

} // namespace Zamt
