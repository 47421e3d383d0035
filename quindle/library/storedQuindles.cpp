#include "files/readTextFile.h"
#include "files/replaceFile.h"
#include "quindle/check/checkQuindle.h"
#include "quindle/core/commaList.h"
#include "quindle/library/QuindleFiles.h"
#include "quindle/library/QuindleLibrary.h"
#include "quindle/library/entryNames.h"
#include "quindle/text/parseQuindle.h"

#include <filesystem>
#include <system_error>

namespace Zamt {

namespace {

/// What is on disk now, found without a word about files that are hidden or broken.
QuindleLibrary scanned(const std::vector<std::string>& searchPath) {
  QuindleLibrary library;
  Diag dropped;
  library.scan(searchPath, dropped);
  return library;
}

std::string knownQuindleNames(const QuindleLibrary& library) {
  const std::string names =
      commaList(library.search({}),
                [](const QuindleLibraryEntry* entry) -> const std::string& { return displayName(*entry); });
  return names.empty() ? " There are none at all." : " There is: " + names + ".";
}

/// Null with an error when there is no such Quindle.
const QuindleLibraryEntry* lookUp(const QuindleLibrary& library, const std::string& name, Diag& diag) {
  const QuindleLibraryEntry* const entry = findQuindleLoosely(library, name);
  if (entry == nullptr)
    diag.error("There is no Quindle called \"" + name + "\"." + knownQuindleNames(library));
  return entry;
}

bool removeFile(const std::string& path, Diag& diag) {
  std::error_code failed;
  if (std::filesystem::remove(path, failed)) return true;
  diag.error("Cannot delete \"" + path + "\"" + (failed ? ": " + failed.message() : std::string()) + ".");
  return false;
}

/// Removes the file of the entry if it lies in the user's directory.
bool removeOwn(const std::string& directory, const QuindleLibraryEntry& entry, Diag& diag) {
  if (isOwnQuindle(directory, entry.path)) return removeFile(entry.path, diag);
  diag.error("\"" + displayName(entry) + "\" is not yours to delete: it is part of the installation, at \"" +
             entry.path +
             "\". Switch it off instead, or duplicate it under a name of your own and change that.");
  return false;
}

} // namespace

bool readQuindle(const std::vector<std::string>& searchPath, const std::string& name, std::string& text,
                 QuindleDocument& document, Diag& diag) {
  const QuindleLibrary library = scanned(searchPath);
  const QuindleLibraryEntry* const entry = lookUp(library, name, diag);
  text.clear(); // only now, since the name may be the document's own
  document = {};
  if (entry == nullptr) return false;
  if (!readTextFile(entry->path, maxQuindleBytes, text)) {
    diag.error("Cannot read \"" + entry->path + "\".");
    return false;
  }
  document = entry->document;
  if (!entry->usable)
    diag.error(entry->error.empty() ? "\"" + displayName(*entry) + "\" does not parse." : entry->error,
               entry->path);
  return true;
}

bool saveQuindle(const std::string& directory, const std::string& text, QuindleDocument& document,
                 Diag& diag) {
  document = {};
  if (!parseQuindle(text, "<new quindle>", document, diag)) return false;
  if (document.name.empty()) {
    diag.error("This Quindle has no name. Write it as  quindle \"Some Name\" { ... }  - the name is what the "
               "library lists it under and what running it asks for.");
    return false;
  }
  if (!checkQuindle(document, diag)) return false;
  std::error_code shownBelow;
  std::filesystem::create_directories(directory, shownBelow);
  const std::string path = quindleFileName(directory, document.name);
  switch (replaceFile(path, text)) {
  case Replaced::NotBegun: diag.error("Cannot write \"" + path + "\"."); return false;
  case Replaced::NotFinished: diag.error("Could not finish writing \"" + path + "\"."); return false;
  case Replaced::Done: break;
  }
  document.sourceFile = path;
  return true;
}

bool deleteQuindle(const std::string& directory, const std::vector<std::string>& searchPath,
                   const std::string& name, std::string& file, bool& revealed, Diag& diag) {
  const QuindleLibrary library = scanned(searchPath);
  const QuindleLibraryEntry* const entry = lookUp(library, name, diag);
  const bool removed = entry != nullptr && removeOwn(directory, *entry, diag);
  revealed = removed && findQuindleLoosely(scanned(searchPath), name) != nullptr;
  file = entry == nullptr ? std::string() : entry->path; // last, since the name may be its text
  return removed;
}

} // namespace Zamt
