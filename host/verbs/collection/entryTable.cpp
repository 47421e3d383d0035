#include "host/verbs/collection/entryTable.h"

#include "host/session/Collection.h"
#include "host/verbs/texts.h"
#include "quindle/library/entryNames.h"
#include "quindle/library/keysOf.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <string>
#include <utility>

namespace Zamt::Host {

namespace {

/// "ready", "off", or why the Quindle can't be run, with its file where that has to be looked at.
std::string stateOf(const QuindleLibrary& library, const QuindleLibraryEntry& entry) {
  if (!entry.usable) return fmt::format("not usable, {}: {}", entry.path, entry.error);
  if (const QuindleLibraryEntry* const first = library.find(entry.document.name); first != &entry)
    return fmt::format("hidden, {}: {} has the same name and comes first", entry.path, first->path);
  return entry.document.enabled ? "ready" : "off";
}

std::string entriesText(const FoundEntries& found) {
  if (found.entries.empty()) return {};
  std::vector<std::vector<std::string>> rows;
  rows.reserve(found.entries.size());
  for (const QuindleLibraryEntry* const entry : found.entries)
    rows.push_back({displayName(*entry), entry->document.category,
                    fmt::format("{}", fmt::join(keysOf(entry->document), " ")),
                    isOwn(*entry) ? "yours" : "installed", stateOf(*found.library, *entry)});
  return tableText({"NAME", "CATEGORY", "KEYS", "FROM", "STATE"}, rows);
}

Data entryData(const QuindleLibrary& library, const QuindleLibraryEntry& entry) {
  const QuindleDocument& document = entry.document;
  return Fields{{"name", displayName(entry)},
                {"category", document.category},
                {"description", document.description},
                {"tags", Data::list(document.tags)},
                {"keys", Data::list(keysOf(document))},
                {"path", entry.path},
                {"own", isOwn(entry)},
                {"usable", entry.usable},
                {"enabled", document.enabled},
                {"first", library.find(document.name) == &entry},
                {"error", entry.error}};
}

Data entriesData(const FoundEntries& found) {
  const auto dataOf = [&found](const QuindleLibraryEntry* entry) {
    return entryData(*found.library, *entry);
  };
  return Fields{{"quindles", Data::list(found.entries, dataOf)}};
}

} // namespace

Part entriesPart(Diag diag, FoundEntries found) {
  return partOf(std::move(diag), std::move(found), entriesText, entriesData);
}

} // namespace Zamt::Host
