#pragma once

#include "quindle/core/Diag.h"

#include <nlohmann/json_fwd.hpp>

#include <cstdint>
#include <string>
#include <string_view>

namespace Zamt::Host {

/// How the command ends.
enum class Exit : int {
  Done = 0,
  Failed = 1, ///< It ran and found faults, or it could not finish.
  Usage = 2   ///< It was called wrongly; nothing was done.
};

/// Where the command's text goes: results to standard output, diagnostics to standard error. Colour and
/// progress appear only on a terminal, and never when NO_COLOR is set to anything.
class Console {
public:
  Console();

  /// Adds to the results. They are written when there are many, and by `finish`.
  void print(std::string_view text);

  /// `print` with a line end.
  void printLine(std::string_view text);

  /// Adds a JSON value as the result, indented. Bytes that are no UTF-8 become U+FFFD.
  void printJson(const nlohmann::json& value);

  /// Prints each diagnostic as one line, in its one text form.
  void report(const Diag& diag);

  /// Prints an error or a note that belongs to no file.
  void error(const std::string& message);
  void note(const std::string& message);

  /// Shows how far a long work is, overwriting itself; `done` of `total`. Nothing unless standard error is a
  /// terminal.
  void progress(std::string_view what, std::uint64_t done, std::uint64_t total);

  /// Takes the progress line away.
  void endProgress();

  /// Whether standard output still takes text.
  bool canPrint() const { return writeError == 0; }

  /// Writes what is left and gives the exit code: `exit`, or Failed when results could not be written. That
  /// is said, except when the reader simply went away.
  int finish(Exit exit);

private:
  void flush();
  void complain(Diag::Severity severity, std::string_view line);

  std::string pending;
  int writeError = 0; ///< The errno of the first failed write to standard output.
  bool decorated = false;
  bool progressShown = false;
};

/// A diagnostic's list as the commands print it: an array of objects with the keys "severity" ("note",
/// "warning", "error"), "message", "file", "line" and "column"; a line or column of 0 means none.
nlohmann::json diagnosticsJson(const Diag& diag);

/// "1 point", "2 points", with the digits of large numbers in groups of three.
std::string countOf(std::uint64_t count, std::string_view noun);

/// A number with its digits in groups of three.
std::string grouped(std::uint64_t count);

} // namespace Zamt::Host
