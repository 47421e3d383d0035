#include "host/clouds/las/classNameRecord.h"

#include <algorithm>
#include <limits>
#include <utility>

namespace Zamt::Host {

namespace {

std::string nameProblem(const LasFile& input, const std::vector<ClassName>& names) {
  const unsigned highest = input.layout.highestClass();
  for (const ClassName& added : names) {
    if (added.name.size() > longestClassName)
      return "The class name \"" + added.name + "\" is too long for a LAS file, which holds " +
             std::to_string(longestClassName) + " bytes. Choose a shorter one.";
    if (added.number > highest)
      return "The points of \"" + input.path + "\" can't hold the class " + std::to_string(added.number) +
             ", the highest is " + std::to_string(highest) + ". Choose a lower number.";
  }
  return {};
}

/// The entry of the lookup record that a class goes to: the one of its number, else an empty one, else one
/// without a name; the place behind all when there is none.
std::size_t entryFor(const std::vector<std::byte>& entries, std::uint8_t number) {
  const std::size_t count = entries.size() / classEntrySize;
  std::size_t empty = count;
  std::size_t nameless = count;
  for (std::size_t i = count; i-- > 0;) {
    const std::byte* const entry = entries.data() + i * classEntrySize;
    const bool named = entry[1] != std::byte{0};
    const auto of = std::to_integer<std::uint8_t>(entry[0]);
    if (of == number && (named || number != 0)) return i;
    if (!named && of == 0) empty = i;
    if (!named) nameless = i;
  }
  return empty != count ? empty : nameless;
}

void enterNames(const std::vector<ClassName>& names, std::vector<std::byte>& entries) {
  for (const ClassName& added : names) {
    const std::size_t at = entryFor(entries, added.number) * classEntrySize;
    if (at >= entries.size()) entries.resize(std::max(at + classEntrySize, classEntries * classEntrySize));
    std::fill_n(entries.begin() + static_cast<std::ptrdiff_t>(at), classEntrySize, std::byte{0});
    entries[at] = static_cast<std::byte>(added.number);
    std::memcpy(&entries[at + 1], added.name.data(), added.name.size());
  }
}

/// The head of a lookup record that is added.
std::vector<std::byte> newRecord(const std::vector<std::byte>& entries) {
  constexpr std::string_view description = "Classification lookup";
  std::vector<std::byte> record(vlrHead + entries.size());
  std::memcpy(record.data() + 2, specUserId, std::strlen(specUserId));
  writeAt(record.data() + recordIdAt, classLookupId);
  writeAt(record.data() + recordLengthAt, static_cast<std::uint16_t>(entries.size()));
  std::memcpy(record.data() + recordLengthAt + 2, description.data(), description.size());
  std::memcpy(record.data() + vlrHead, entries.data(), entries.size());
  return record;
}

/// Adds a lookup record behind the last VLR that is sound. A count that said more than there are is put
/// right with it: otherwise a reader would take the bytes behind for records as before.
void addLookup(const LasLayout& layout, const std::vector<ClassName>& names, LasEdits& edits) {
  std::vector<std::byte> entries(classEntries * classEntrySize);
  enterNames(names, entries);
  edits.insert(layout.vlrEnd, newRecord(entries));
  edits.countVlrs(1);
}

/// Enters names into the record that is there, enlarging it when its entries don't suffice.
bool changeLookup(std::span<const std::byte> bytes, const LasRecord& record,
                  const std::vector<ClassName>& names, LasEdits& edits) {
  const std::size_t whole = record.length / classEntrySize * classEntrySize;
  const auto data = bytes.subspan(record.data, whole);
  std::vector<std::byte> entries(data.begin(), data.end());
  enterNames(names, entries);
  if (entries.size() > record.length) {
    if (!record.extended && entries.size() > std::numeric_limits<std::uint16_t>::max()) return false;
    const auto old = entries.begin() + static_cast<std::ptrdiff_t>(record.length);
    edits.insert(record.data + record.length, {old, entries.end()});
    const std::uint64_t length = entries.size();
    if (record.extended)
      replaceNumber(edits, record.head + recordLengthAt, length);
    else
      replaceNumber(edits, record.head + recordLengthAt, static_cast<std::uint16_t>(length));
    entries.erase(old, entries.end());
  }
  edits.replace(record.data, std::move(entries));
  return true;
}

} // namespace

bool enterClassNames(const LasFile& input, const std::vector<ClassName>& names, LasEdits& edits,
                     std::string& error) {
  error = nameProblem(input, names);
  if (!error.empty() || names.empty()) return error.empty();
  const LasRecord* const record = input.layout.findSpecRecord(classLookupId);
  if (!record) {
    addLookup(input.layout, names, edits);
    return true;
  }
  if (changeLookup(input.bytes(), *record, names, edits)) return true;
  error = "The header of \"" + input.path +
          "\" has no room for the names of new classes. Write it anew with the program it came from.";
  return false;
}

} // namespace Zamt::Host
