#include "host/session/Collection.h"
#include "host/verbs/collection/entryTable.h"
#include "host/verbs/options.h"
#include "host/verbs/verbs.h"
#include "quindle/library/QuindleFiles.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <filesystem>
#include <string>
#include <system_error>
#include <vector>

namespace Zamt::Host {

namespace {

/// Why something that is called like a Quindle is none; empty if it is a file.
std::string whyNoFile(const std::filesystem::directory_entry& entry) {
  std::error_code unknown;
  if (entry.is_regular_file(unknown)) return {};
  if (entry.is_directory(unknown)) return "This is a directory, not a Quindle. Give it another name.";
  if (entry.is_symlink(unknown) && !entry.exists(unknown))
    return "This link leads nowhere. Remove it or put back what it leads to.";
  return "This is no file that holds a text. Remove it or give it another name.";
}

/// A scan passes over what is no file; a user who wonders where a Quindle has gone wants to hear of it.
void noteOddFiles(const std::string& directory, Diag& diag) {
  std::vector<std::filesystem::directory_entry> odd;
  std::error_code failed;
  std::filesystem::directory_iterator entry(directory, failed);
  for (const std::filesystem::directory_iterator end; !failed && entry != end; entry.increment(failed))
    if (entry->path().extension() == ".quindle" && !whyNoFile(*entry).empty()) odd.push_back(*entry);
  std::sort(odd.begin(), odd.end());
  for (const std::filesystem::directory_entry& one : odd) diag.note(whyNoFile(one), one.path().string());
}

/// The table says what is wrong with a file, so that only notes are left to tell.
Diag onlyNotes(const Diag& diag) {
  Diag notes;
  for (const Diag::Entry& entry : diag.entries)
    if (entry.severity == Diag::Severity::Note) notes.note(entry.message, entry.file);
  return notes;
}

Answer list(const Request& request, const Context& /*context*/) {
  Diag scan;
  const auto library = std::make_shared<const QuindleLibrary>(scanCollection(scan));
  Diag diag = onlyNotes(scan);
  const std::vector<std::string> directories = quindleSearchPath();
  for (const std::string& directory : directories) noteOddFiles(directory, diag);
  std::vector<const QuindleLibraryEntry*> entries = library->search({});
  if (entries.empty())
    diag.note(fmt::format("There is no Quindle in {}. Keep one there with \"quindle save FILE\".",
                          fmt::join(directories, ", ")));
  const std::string& category = request.text("category");
  if (!category.empty())
    std::erase_if(entries,
                  [&](const QuindleLibraryEntry* entry) { return entry->document.category != category; });
  return answerOf(entriesPart(std::move(diag), {library, std::move(entries)}));
}

} // namespace

Verb listVerb() {
  return {.name = "list",
          .summary = "List the Quindles of the collection. These are your own, and the installed ones.",
          .footer = "Example:\n  quindle list --category Noise",
          .options = {{.name = "category",
                       .help = "List only those of this category.",
                       .placeholder = "CATEGORY"},
                      jsonOption(entriesJsonHelp)},
          .run = list};
}

} // namespace Zamt::Host
