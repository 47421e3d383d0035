#pragma once

#include "quindle/runtime/QuindleRuntime.h"

#include <map>
#include <string>

namespace Zamt {

/// One pass over the steps of a program, for one run. All references have to outlive it.
class QuindleRuntime::ProgramWalk {
public:
  QuindleRuntime& runtime;
  const QuindleDocument& doc;
  const Program& program;
  const std::map<std::string, std::string>& args;
  bool preview;
  QuindleRunResult& result;
  Diag& diag;
  std::map<std::string, QuindleValue> lets = {};
  /// The object of the last fired step that writes or counts: what reports read their counts from.
  std::string counter = {};

  /// Takes the steps in order; false after the first that fails.
  bool walk();

  /// Whether the selection could be worked out at all. That nothing matched is no fault.
  bool checkSelection();

  /// Whether the editor still knows which class to put the points into.
  bool checkClass();

private:
  bool take(const RunStep& step);
  bool fire(const RunStep& step);
  void noteStatuses();
};

} // namespace Zamt
