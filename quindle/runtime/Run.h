#pragma once

#include "quindle/runtime/QuindleRuntime.h"

#include <map>
#include <memory>
#include <string>
#include <vector>

namespace Zamt {

/// One run of one document: what its steps look at and what they leave behind. All references have to outlive
/// it.
class QuindleRuntime::Run {
public:
  using Args = std::map<std::string, std::string>;

  Run(QuindleRuntime& runtime, const QuindleDocument& doc, const Args& args, bool preview,
      QuindleRunResult& result, Diag& diag);

  /// What `QuindleRuntime::run` does.
  bool perform();

private:
  /// A run within `caller`, which waits for it.
  Run(const Run& caller, const QuindleDocument& doc, const Args& args, QuindleRunResult& result);

  bool performAll();
  bool bind();
  bool walk();
  bool take(const RunStep& step);
  bool fire(const RunStep& step);
  void addSettled(int pieces);
  bool let(const RunStep& step);
  void report(const RunStep& step);
  bool checkSelection();
  void noteStatuses();
  bool checkClass();

  bool runNested(const RunStep& step);
  bool resolveNested(const RunStep& step, QuindleDocument& nested);
  bool mayNest(const QuindleDocument& nested);
  bool nestedArguments(const RunStep& step, const QuindleDocument& nested, Args& nestedArgs);
  std::vector<const Run*> waiting() const;

  /// Reports an error at the document's name; always false.
  bool fail(const std::string& message);

  QuindleRuntime& runtime_;
  const Run* const caller_; ///< Null for the outermost.
  const QuindleDocument& doc_;
  const Args& args_;
  const bool preview_;
  QuindleRunResult& result_;
  Diag& diag_;
  /// Shared, since a run nested in this one may replace the program that is kept.
  std::shared_ptr<const Program> program_;
  std::map<std::string, QuindleValue> lets_;
  /// The object of the last fired step that writes or counts: what reports read their counts from.
  std::string counter_;
};

} // namespace Zamt
