#pragma once

#include "quindle/core/Export.h"

#include <cstdint>
#include <string>
#include <vector>

namespace Zamt {

/// What went wrong, or is worth knowing, in the order in which it was found. Every operation that can fail
/// takes one, appends to it and goes on as far as it sensibly can; nothing is merged, sorted or limited.
/// A plain value without a lock: it belongs to one thread at a time. An entry that there is no memory for is
/// not added, and std::bad_alloc passes through.
struct QUINDLE_API Diag {
  /// How grave it is. Only an Error makes an operation fail.
  enum class Severity : std::int32_t { Note = 0, Warning = 1, Error = 2 };

  /// One diagnostic.
  struct QUINDLE_API Entry {
    Severity severity = Severity::Note; ///< How grave it is.
    std::string message;                ///< The sentence for the user, as it was reported.
    std::string file;        ///< Where it belongs: a file, or the name of an object; empty for nowhere.
    std::int32_t line = 0;   ///< 1 for the first line; 0 or less when there is none.
    std::int32_t column = 0; ///< 1 for the first byte of the line; 0 or less when there is none.

    /// "file:line:column: severity: message", without the parts that are absent. A column is shown only
    /// behind a line.
    std::string format() const;
  };

  std::vector<Entry> entries; ///< In the order in which they were reported.

  /// How many entries are errors, as long as entries are added through the operations below only.
  std::uint64_t errorCount = 0;

  /// Appends an entry. `line` and `column` count from 1; 0 means there is none.
  void at(Severity severity, const std::string& message, const std::string& file, int line, int column);

  /// Append an entry without a position. The message comes first.
  /// @{
  void note(const std::string& message, const std::string& file = {});
  void warning(const std::string& message, const std::string& file = {});
  void error(const std::string& message, const std::string& file = {});
  /// @}

  /// All entries, one a line, with no line end after the last.
  std::string format() const;

  /// The bare message of the first error; empty if there is none.
  std::string firstError() const;

  /// Forgets all entries and sets the count back.
  void clear();

  /// Appends copies of all entries of `other`. Absorbing itself does nothing.
  void absorb(const Diag& other);
};

} // namespace Zamt
