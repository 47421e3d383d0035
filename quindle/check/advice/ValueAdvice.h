#pragma once

#include "quindle/check/advice/Advisor.h"

#include <optional>
#include <string_view>
#include <unordered_map>

namespace Zamt {

/// Advises on what is worked out without the data: the values of "let", of the arguments of "run", and the
/// conditions of "if". Steps are handed in in the order of the text.
class ValueAdvice {
public:
  explicit ValueAdvice(Advisor& advisor) : advisor_(advisor) {}

  /// Begins a trigger, which knows nothing of the names in others.
  void start() { names_.clear(); }

  void let(const QuindleStep& step);
  void run(const QuindleStep& step);

  /// The name that stands for one thing after the other.
  void loop(const QuindleStep& step) { names_[step.name] = false; }

  /// What the condition is worth, if no value given for a run can change that.
  std::optional<bool> decide(const QuindleStep& step);

  /// Whether a "let" so far, or a loop, has this name.
  bool isNamed(std::string_view word) const { return names_.contains(word); }

private:
  void adviseOnWords(const QuindleExpr& value);
  void adviseOnTruth(const QuindleExpr& condition);
  bool isText(const QuindleExpr& value) const;

  Advisor& advisor_;
  std::unordered_map<std::string_view, bool> names_; ///< And whether the value is a text.
};

} // namespace Zamt
