#pragma once

#include "host/verbs/Answer.h"
#include "quindle/core/Diag.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace Zamt::Host {

/// Where the command's text goes: results to standard output, diagnostics to standard error. Colour and
/// progress appear only on a terminal, and never when NO_COLOR is set to anything.
class Console {
public:
  Console();

  /// Adds to the results. They are written when there are many, and by `finish`.
  void print(std::string_view text);

  /// Prints each diagnostic as one line, in its one text form. Bytes that are no UTF-8 are shown by their
  /// numbers.
  void report(const Diag& diag);

  /// Prints an error or a note that belongs to no file.
  void error(const std::string& message);
  void note(const std::string& message);

  /// Shows how far a long work is, overwriting itself; `done` of `total`. Nothing unless standard error is a
  /// terminal.
  void progress(std::string_view what, std::uint64_t done, std::uint64_t total);

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
};

} // namespace Zamt::Host
