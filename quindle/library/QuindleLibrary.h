#pragma once

#include "quindle/core/Diag.h"
#include "quindle/core/Export.h"
#include "quindle/core/QuindleDocument.h"

#include <cstddef>
#include <cstdint>
#include <map>
#include <set>
#include <string>
#include <vector>

namespace Zamt {

/// One file of a collection. One that can't be used keeps its place, with the reason.
struct QUINDLE_API QuindleLibraryEntry {
  std::string path; ///< As it was given to `load`; what tells entries apart.
  /// What the file holds, or as much of it as could be read. A file that gives no name goes by its own,
  /// without the extension.
  QuindleDocument document;
  bool usable = false; ///< It was read, parsed and passed the checks.
  std::string error;   ///< Why it is not usable; empty if it is.
};

/// The Quindles of a set of directories, in memory, in the order in which they were loaded. It owns its
/// entries; what `find`, `search` and `runnable` return points to them and is good until the library is next
/// changed. Nothing watches the directories: a host that wrote files clears and scans again.
///
/// If memory runs out in a scan, it returns 0 after an error, and the library holds some of the files, each
/// whole. What takes no Diag lets std::bad_alloc through, the function from `resolver` included.
///
/// Nothing is locked: one thread at a time.
class QUINDLE_API QuindleLibrary {
public:
  /// Reads one file, in place of the entry of exactly this path if there is one. True if it is usable. If
  /// not, there is an entry all the same, and `diag` gets one error (it can't be read) or one warning (its
  /// first fault).
  bool load(const std::string& path, Diag& diag);

  /// Loads every regular file, links followed, that lies directly in `directory` and whose name ends in
  /// ".quindle", in the order of their paths. Returns how many; a directory that is not there is a note.
  std::uint64_t scan(const std::string& directory, Diag& diag);

  /// Scans several directories. One that bears the name of an entry of an earlier directory is hidden by it:
  /// that is a note, and it leaves the list. Returns how many files there were, hidden ones included.
  std::uint64_t scan(const std::vector<std::string>& directories, Diag& diag);

  /// Forgets all entries.
  void clear();

  /// The first entry of exactly this name, or null.
  const QuindleLibraryEntry* find(const std::string& name) const;

  /// The entries that hold `query`, the case of ASCII letters ignored, in their name, description, category
  /// or one of their tags; all of them for empty text. In the order of the list.
  std::vector<const QuindleLibraryEntry*> search(const std::string& query) const;

  /// Every category that an entry names, once, sorted by bytes.
  std::vector<std::string> categories() const;

  /// The entries that can be run: usable and switched on. In the order of the list.
  std::vector<const QuindleLibraryEntry*> runnable() const;

  /// A function that finds Quindles in this library, for `QuindleRuntime::resolver` and `explainQuindle`. It
  /// points to the library, which has to outlive it and must stay where it is.
  QuindleResolver resolver() const;

private:
  using IndicesByName = std::map<std::string, std::set<std::size_t>>;

  friend QuindleLibrary scannedQuindles(const std::vector<std::string>& searchPath);

  QUINDLE_PRIVATE bool read(const std::string& path, Diag& diag);
  QUINDLE_PRIVATE std::uint64_t readAll(const std::string& directory, Diag& diag);
  QUINDLE_PRIVATE std::uint64_t readAll(const std::vector<std::string>& directories, Diag& diag);
  QUINDLE_PRIVATE void put(QuindleLibraryEntry&& entry);
  QUINDLE_PRIVATE void hideBehind(std::size_t earlier, Diag& diag);
  QUINDLE_PRIVATE void noteName(IndicesByName&& name);
  QUINDLE_PRIVATE void forgetName(std::size_t index);
  QUINDLE_PRIVATE std::size_t firstOf(const std::string& name) const;

  std::vector<QuindleLibraryEntry> entries_;
  std::map<std::string, std::size_t> byPath_; ///< Where in `entries_` a path stands.
  IndicesByName indexByName_;                 ///< Likewise all of one name, which is never none.
};

} // namespace Zamt
