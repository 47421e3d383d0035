#pragma once

#include "host/cli/Console.h"
#include "host/verbs/Verb.h"

namespace Zamt::Host {

/// Shows the answer of one verb: as text, part by part as they come, or as one JSON value at the end.
class AnswerPrinter {
public:
  /// Both must outlive it.
  AnswerPrinter(const Verb& verb, bool asJson, Console& console);

  /// Takes a part that comes before the whole answer.
  void take(const Part& part);

  /// Shows what is left, and gives the end of the call. Why a call is refused is told in words either way.
  Status finish(const Answer& answer);

private:
  void showText(const Part& part, bool isLong);
  void gather(const Part& part);
  void showJson(const Part& summary);

  const Verb& verb_;
  const bool asJson_;
  Console& console_;
  Data::List data_; ///< Of the parts so far, of those that have any.
  Data::List said_; ///< Their diagnostics.
};

} // namespace Zamt::Host
