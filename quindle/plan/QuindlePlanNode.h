#pragma once

#include "quindle/core/Diag.h"
#include "quindle/core/Export.h"
#include "quindle/core/QuindleDocument.h"
#include "quindle/plan/QuindleOperation.h"

#include <cstdint>
#include <string>
#include <tuple>
#include <vector>

namespace Zamt {

/// One node of a plan: a condition of the catalogue with all its arguments, or an "and" or "or" over others.
///
/// In a plan that `planPredicate` calls good, only conditions are negated, no And stands directly in an And
/// and no Or in an Or, the children of every And stand in order of cost, and every condition has as many
/// arguments as its operation has parameters. Plans nest without limit; nothing here recurses. Copying and
/// describing one let std::bad_alloc through.
struct QUINDLE_API QuindlePlanNode {
  /// What the node is, and which fields it uses.
  enum class Kind : std::int32_t {
    Condition = 0, ///< `operation`, `negated`, `arguments`.
    And = 1,       ///< `children`, cheapest first.
    Or = 2         ///< `children`, as written.
  };

  Kind kind = Kind::Condition;                 ///< Which of the fields below count.
  const QuindleOperation* operation = nullptr; ///< Points into the catalogue; null on And and Or.
  bool negated = false;                        ///< The condition's result is inverted.
  std::vector<QuindleExpr> arguments;          ///< One for each parameter of `operation`, in that order.
  std::vector<QuindlePlanNode> children;       ///< Of an And or an Or.
  std::int32_t line = 0;                       ///< Of the expression that the node came from.

  /// All fields in this order, as a tuple of references.
  QUINDLE_PRIVATE static auto fieldsOf(auto& record) {
    auto& [kind, operation, negated, arguments, children, line] = record;
    return std::tie(kind, operation, negated, arguments, children, line);
  }

  /// A copy is deep. None of these recurses, however deep the nesting.
  /// @{
  QuindlePlanNode() = default;
  QuindlePlanNode(const QuindlePlanNode& other);
  QuindlePlanNode(QuindlePlanNode&& other) noexcept = default;
  QuindlePlanNode& operator=(const QuindlePlanNode& other);
  QuindlePlanNode& operator=(QuindlePlanNode&& other) noexcept;
  ~QuindlePlanNode();
  /// @}

  /// A condition costs what its operation does. An And counts as cheap as its cheapest member, which runs
  /// first; an Or as dear as its dearest branch. 0 where there is nothing to cost.
  std::uint32_t cost() const;

  /// The plan as one line, with every argument, defaults included.
  std::string describe() const;
};

/// Turns the condition of a "select" into a plan: comparisons and calls become conditions of the catalogue
/// with their defaults filled in, "not" is pushed down to them, nested "and"s and "or"s are flattened, and
/// the members of every And are put in order of cost, the written order breaking ties.
///
/// `plan` is overwritten. Returns false after reporting every fault of the expression, at its line and column
/// in `file`; the plan must not be used then.
QUINDLE_API bool planPredicate(const QuindleExpr& expression, QuindlePlanNode& plan, Diag& diag,
                               const std::string& file);

} // namespace Zamt
