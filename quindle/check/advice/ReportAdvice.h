#pragma once

#include "quindle/check/advice/Advisor.h"
#include "quindle/check/advice/ValueAdvice.h"

#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

namespace Zamt {

/// Advises on what report lines name. Their counts are read from the object of the last action before them,
/// so the ways on which a step can be reached matter.
class ReportAdvice {
public:
  ReportAdvice(Advisor& advisor, const ValueAdvice& values) : advisor_(advisor), values_(values) {}

  /// Begins a trigger.
  void start();

  void classify(const QuindleStep& step);
  void call(const QuindleStep& step);
  void report(const QuindleStep& step);

  /// Around the steps of an "if" or a loop, with `startElse` before those of the "else". `decided` is what
  /// its condition is worth on every run, if it is known.
  /// @{
  void openBlocks();
  void startElse();
  void closeBlocks(std::optional<bool> decided);
  /// @}

private:
  /// What may have counted on the ways to a step: the lines of the steps, 0 for none.
  struct Counted {
    std::int32_t byClassify = 0;
    std::int32_t byCall = 0;
    std::int32_t taken = 0; ///< By a "classify" from which a "call" behind it took the count,
    std::int32_t taker = 0; ///< and that "call".

    void join(const Counted& other);
  };

  struct Block {
    Counted before;
    Counted behindBody;
    bool hasElse = false;
  };

  void adviseOnCount(std::string_view word, const QuindleStep& step);

  Advisor& advisor_;
  const ValueAdvice& values_;
  Counted counted_;
  std::vector<Block> blocks_;
};

} // namespace Zamt
