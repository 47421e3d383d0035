#pragma once

#include "quindle/core/QuindleDocument.h"
#include "quindle/text/ExpressionReader.h"
#include "quindle/text/TokenReader.h"

#include <string>
#include <string_view>
#include <vector>

namespace Zamt {

/// Reads blocks of steps. Steps are built in place at the end of their list, for they are large; blocks
/// within blocks wait on a stack of its own.
class StepReader {
public:
  explicit StepReader(TokenReader& tokens) : tokens_(tokens), expressions_(tokens) {}

  /// Reads "{", steps and "}" to the end of `steps`. False if one of the braces is missing, which was
  /// reported.
  bool readBlock(std::vector<QuindleStep>& steps);

private:
  /// What became of the step at the end of the list. A Failed one is to be taken off again; behind an Opened
  /// one a block of its own is being read.
  enum class Outcome { Complete, Failed, Opened };

  /// Which part of the last step of the block around it a block is.
  enum class Part { Trigger, ThenBlock, ElseBlock, LoopBlock };

  /// A block whose "}" is still to come. The lists stay where they are: each only grows while none of its
  /// steps is being read.
  struct Block {
    std::vector<QuindleStep>* steps;
    Part part;
  };

  Outcome openBlock(std::vector<QuindleStep>& steps, Part part);
  bool closeBlock();
  void readStep();
  void finishStep(Outcome outcome);
  void skipFault();

  Outcome readForm(QuindleStep& step);
  Outcome readAssignment(QuindleStep& step, std::string_view what, QuindleSpan::Role role);
  Outcome readCreate(QuindleStep& step);
  Outcome readConnect(QuindleStep& step);
  Outcome readForEach(QuindleStep& step);
  void readClassify(QuindleStep& step);
  void readCall(QuindleStep& step);
  static void makeTextLiteral(QuindleStep& step, std::string&& text);

  TokenReader& tokens_;
  ExpressionReader expressions_;
  std::vector<Block> blocks_;
};

} // namespace Zamt
