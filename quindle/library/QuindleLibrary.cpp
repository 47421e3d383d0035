#include "quindle/library/QuindleLibrary.h"

#include "files/readTextFile.h"
#include "files/system.h"
#include "quindle/check/unguarded.h"
#include "quindle/core/AsciiText.h"
#include "quindle/library/QuindleFiles.h"
#include "quindle/library/scannedQuindles.h"
#include "quindle/text/parseBriefly.h"

#include <algorithm>
#include <filesystem>
#include <limits>
#include <string_view>
#include <system_error>
#include <utility>

namespace Zamt {

namespace {

constexpr std::string_view extension = ".quindle";
constexpr std::size_t nowhere = std::numeric_limits<std::size_t>::max();

/// The words of the first error, with its line if it has one.
std::string whyNotUsable(const Diag& faults) {
  const auto first = std::find_if(faults.entries.begin(), faults.entries.end(), [](const Diag::Entry& entry) {
    return entry.severity == Diag::Severity::Error;
  });
  if (first == faults.entries.end()) return "is not a usable Quindle";
  return first->line >= 1 ? "line " + std::to_string(first->line) + ": " + first->message : first->message;
}

/// Fills an entry from the file at its path.
void readEntry(QuindleLibraryEntry& entry, Diag& diag) {
  std::string text;
  if (!readTextFile(entry.path, maxQuindleBytes, text)) {
    entry.error = "cannot be read";
    diag.error("Cannot read \"" + entry.path + "\".", entry.path);
    return;
  }
  Diag faults; // the caller is told of the first one only
  entry.usable = parseBriefly(text, entry.path, entry.document, faults) &&
                 Unguarded::checkQuindle(entry.document, faults);
  if (entry.usable) return;
  entry.error = whyNotUsable(faults);
  diag.warning("\"" + entry.path + "\" is not usable: " + entry.error, entry.path);
}

/// The paths of the Quindle files directly in a directory, sorted by bytes.
std::vector<std::string> quindleFilesIn(const std::string& directory) {
  std::vector<std::string> paths;
  for (const std::string& name : System::namesIn(directory)) {
    const std::filesystem::path path = std::filesystem::path(directory) / name;
    std::error_code unknown;
    if (path.extension() == extension && std::filesystem::is_regular_file(path, unknown))
      paths.push_back(path.string());
  }
  std::sort(paths.begin(), paths.end());
  return paths;
}

bool holds(const std::string& text, const std::string& loweredQuery) {
  return lowered(text).find(loweredQuery) != std::string::npos;
}

bool matches(const QuindleDocument& document, const std::string& loweredQuery) {
  return holds(document.name, loweredQuery) || holds(document.description, loweredQuery) ||
         holds(document.category, loweredQuery) ||
         std::any_of(document.tags.begin(), document.tags.end(),
                     [&](const std::string& tag) { return holds(tag, loweredQuery); });
}

} // namespace

bool QuindleLibrary::load(const std::string& path, Diag& diag) {
  return guarded(diag, false, [&] { return read(path, diag); });
}

bool QuindleLibrary::read(const std::string& path, Diag& diag) {
  QuindleLibraryEntry entry;
  entry.path = path;
  readEntry(entry, diag);
  if (entry.document.name.empty()) entry.document.name = std::filesystem::path(path).stem().string();
  const bool usable = entry.usable;
  put(std::move(entry));
  return usable;
}

/// Takes all the memory it needs before it changes anything that is looked up.
void QuindleLibrary::put(QuindleLibraryEntry&& entry) {
  const auto known = byPath_.find(entry.path);
  const std::size_t index = known == byPath_.end() ? entries_.size() : known->second;
  IndicesByName name{{entry.document.name, {index}}};
  if (known == byPath_.end()) {
    std::map<std::string, std::size_t> path{{entry.path, index}};
    entries_.push_back(std::move(entry));
    byPath_.merge(path);
  } else {
    forgetName(index);
    entries_[index] = std::move(entry);
  }
  noteName(std::move(name));
}

std::uint64_t QuindleLibrary::scan(const std::string& directory, Diag& diag) {
  return guarded(diag, std::uint64_t{0}, [&] { return readAll(directory, diag); });
}

std::uint64_t QuindleLibrary::scan(const std::vector<std::string>& directories, Diag& diag) {
  return guarded(diag, std::uint64_t{0}, [&] { return readAll(directories, diag); });
}

std::uint64_t QuindleLibrary::readAll(const std::string& directory, Diag& diag) {
  std::error_code failed;
  if (!std::filesystem::is_directory(directory, failed)) {
    diag.note("No Quindles in \"" + directory + "\": there is no such directory.", directory);
    return 0;
  }
  const std::vector<std::string> paths = quindleFilesIn(directory);
  for (const std::string& path : paths) read(path, diag);
  return paths.size();
}

std::uint64_t QuindleLibrary::readAll(const std::vector<std::string>& directories, Diag& diag) {
  std::uint64_t files = 0;
  for (const std::string& directory : directories) {
    const std::size_t before = entries_.size();
    files += readAll(directory, diag);
    if (before > 0) hideBehind(before, diag);
  }
  return files;
}

/// Takes out the entries from index `earlier` on whose name one in front of it bears, the last one first.
void QuindleLibrary::hideBehind(std::size_t earlier, Diag& diag) {
  std::vector<QuindleLibraryEntry> kept;
  kept.reserve(entries_.size() - earlier);
  while (entries_.size() > earlier) {
    const std::size_t index = entries_.size() - 1;
    QuindleLibraryEntry& entry = entries_[index];
    const bool hidden = firstOf(entry.document.name) < earlier;
    if (hidden)
      diag.note("\"" + entry.path + "\" is hidden by another Quindle of the same name, found first.",
                entry.path);
    forgetName(index);
    byPath_.erase(entry.path);
    if (!hidden) kept.push_back(std::move(entry));
    entries_.pop_back();
  }
  std::reverse(kept.begin(), kept.end());
  for (QuindleLibraryEntry& entry : kept) put(std::move(entry));
}

/// Takes over what was prepared, which needs no memory.
void QuindleLibrary::noteName(IndicesByName&& name) {
  indexByName_.merge(name);
  for (auto& [known, indices] : name) indexByName_.find(known)->second.merge(indices);
}

void QuindleLibrary::forgetName(std::size_t index) {
  const auto named = indexByName_.find(entries_[index].document.name);
  if (named == indexByName_.end()) return;
  named->second.erase(index);
  if (named->second.empty()) indexByName_.erase(named);
}

std::size_t QuindleLibrary::firstOf(const std::string& name) const {
  const auto named = indexByName_.find(name);
  return named == indexByName_.end() ? nowhere : *named->second.begin();
}

void QuindleLibrary::clear() {
  entries_.clear();
  byPath_.clear();
  indexByName_.clear();
}

const QuindleLibraryEntry* QuindleLibrary::find(const std::string& name) const {
  const std::size_t index = firstOf(name);
  return index == nowhere ? nullptr : &entries_[index];
}

std::vector<const QuindleLibraryEntry*> QuindleLibrary::search(const std::string& query) const {
  const std::string wanted = lowered(query);
  std::vector<const QuindleLibraryEntry*> found;
  for (const QuindleLibraryEntry& entry : entries_)
    if (wanted.empty() || matches(entry.document, wanted)) found.push_back(&entry);
  return found;
}

std::vector<std::string> QuindleLibrary::categories() const {
  std::set<std::string> names;
  for (const QuindleLibraryEntry& entry : entries_)
    if (!entry.document.category.empty()) names.insert(entry.document.category);
  return {names.begin(), names.end()};
}

std::vector<const QuindleLibraryEntry*> QuindleLibrary::runnable() const {
  std::vector<const QuindleLibraryEntry*> ready;
  for (const QuindleLibraryEntry& entry : entries_)
    if (entry.usable && entry.document.enabled) ready.push_back(&entry);
  return ready;
}

QuindleLibrary scannedQuindles(const std::vector<std::string>& searchPath) {
  QuindleLibrary library;
  Diag dropped;
  library.readAll(searchPath, dropped);
  return library;
}

QuindleResolver QuindleLibrary::resolver() const {
  return [this](const std::string& name, QuindleDocument& document, std::string& error) {
    const QuindleLibraryEntry* const entry = find(name);
    if (entry == nullptr) return false;
    if (entry->usable)
      document = entry->document;
    else
      error = entry->error.empty() ? "it is not usable" : entry->error;
    return entry->usable;
  };
}

} // namespace Zamt
