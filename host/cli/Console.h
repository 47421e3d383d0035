#pragma once

#include "host/session/Progress.h"
#include "host/verbs/Answer.h"
#include "quindle/core/Diag.h"

#include <chrono>
#include <optional>
#include <string>
#include <string_view>

namespace Zamt::Host {

/// When long work began, and the work on what is at hand.
struct ProgressClock {
  using Time = std::chrono::steady_clock::time_point;
  std::optional<Time> start{};
  Time startOfOne{};
  std::string what{};
};

/// Where the command's text goes: results to standard output, diagnostics to standard error. Colour and
/// progress appear only on a terminal, and never when NO_COLOR is set to anything.
class Console {
public:
  Console();

  /// Adds to the results. They are written when there are many, and by `finish`.
  void print(std::string_view text);

  /// Prints each diagnostic as one line, in its one text form. Bytes that are no UTF-8 are shown by their
  /// numbers. Under one with a place its line of `source` is quoted, unless that is empty or the one before
  /// has the same place. What they are `about` is named too, where they don't: in front, or behind what
  /// begins with a place that editors jump to.
  void report(const Diag& diag, std::string_view source = {}, std::string_view about = {});

  /// Prints an error or a note that belongs to no file.
  void error(const std::string& message);
  void note(const std::string& message);

  /// Shows how far a long work is, overwriting itself, with the points a second and the time left as soon as
  /// there is something to tell them from. Nothing unless standard error is a terminal. One call at a time.
  void progress(const ProgressNow& now);

  /// Takes the progress line away.
  void endProgress();

  /// Writes what is left and gives the exit code: that of `status`, or Failed when results could not be
  /// written. That is said, except when the reader simply went away.
  int finish(Status status);

private:
  void flush();
  void complain(Diag::Severity severity, std::string_view line);

  std::string pending_;
  int writeError_ = 0; ///< The errno of the first failed write to standard output.
  bool decorated_ = false;
  bool progressShown_ = false;
  ProgressClock clock_;
};

} // namespace Zamt::Host
