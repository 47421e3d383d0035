#include "host/clouds/las/CloudWriter.h"

#include "files/AtomicFile.h"
#include "host/clouds/CloudAccess.h"

#include <algorithm>
#include <atomic>
#include <limits>
#include <mutex>
#include <oneapi/tbb/enumerable_thread_specific.h>
#include <oneapi/tbb/parallel_for.h>
#include <optional>

namespace Zamt::Host {

namespace {

/// Untouched bytes are copied in pieces of at most this many: large enough that a call costs nothing beside
/// its work, small enough that two threads share the work evenly.
constexpr std::size_t copySize = std::size_t{8} << 20;

/// Bytes that replace those at a place of the written file.
struct Patch {
  std::uint64_t at = 0;
  std::vector<std::byte> bytes;
};

/// How the written file differs from the input, beside the classes: room that is inserted at one place, and
/// bytes that are replaced afterwards.
struct Changes {
  std::size_t insertAt = 0;
  std::size_t inserted = 0;
  std::vector<Patch> patches;
};

/// A stretch of the input that is copied; with the classes of one block, when that was changed.
struct Piece {
  std::size_t from = 0;
  std::size_t size = 0;
  std::optional<std::size_t> block;
};

template <class T>
Patch patchOf(std::uint64_t at, T value) {
  Patch patch{at, std::vector<std::byte>(sizeof(T))};
  writeAt(patch.bytes.data(), value);
  return patch;
}

std::string nameProblem(const PointCloud& cloud, const std::vector<ClassName>& names) {
  for (const ClassName& added : names) {
    if (added.name.size() > longestClassName)
      return "The class name \"" + added.name + "\" is too long for a LAS file, which holds " +
             std::to_string(longestClassName) + " bytes. Choose a shorter one.";
    if (added.number > cloud.highestClass())
      return "The points of \"" + cloud.path() + "\" can't hold the class " + std::to_string(added.number) +
             ", the highest is " + std::to_string(cloud.highestClass()) + ". Choose a lower number.";
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

/// Moves what the header says of places behind the inserted bytes. False when the points would start further
/// on than the header can say.
bool shiftHeader(const PointCloud::State& cloud, Changes& changes) {
  const LasLayout& layout = cloud.layout;
  const std::byte* const header = cloud.file->bytes().data();
  if (layout.pointOffset >= changes.insertAt) {
    const std::uint64_t moved = layout.pointOffset + changes.inserted;
    if (moved > std::numeric_limits<std::uint32_t>::max()) return false;
    changes.patches.push_back(patchOf(HeaderAt::pointOffset, static_cast<std::uint32_t>(moved)));
  }
  const auto shift = [&](std::size_t place) {
    const auto start = readAt<std::uint64_t>(header + place);
    if (start >= changes.insertAt) changes.patches.push_back(patchOf(place, start + changes.inserted));
  };
  if (layout.versionMinor >= 3 && layout.headerSize >= HeaderAt::evlrStart) shift(HeaderAt::waveformStart);
  if (layout.versionMinor >= 4 && layout.headerSize >= headerOf14) shift(HeaderAt::evlrStart);
  return true;
}

/// The head of a lookup record that is added.
std::vector<std::byte> newRecord(const std::vector<std::byte>& entries) {
  constexpr std::string_view description = "Classification lookup";
  std::vector<std::byte> record(vlrHead);
  std::memcpy(record.data() + 2, specUserId, std::strlen(specUserId));
  writeAt(record.data() + recordIdAt, classLookupId);
  writeAt(record.data() + recordLengthAt, static_cast<std::uint16_t>(entries.size()));
  std::memcpy(record.data() + recordLengthAt + 2, description.data(), description.size());
  record.insert(record.end(), entries.begin(), entries.end());
  return record;
}

/// Adds a lookup record behind the last VLR that is sound. A count that said more than there are is put
/// right with it: otherwise a reader would take the bytes behind for records as before.
void addLookup(const LasLayout& layout, const std::vector<ClassName>& names, Changes& changes) {
  std::vector<std::byte> entries(classEntries * classEntrySize);
  enterNames(names, entries);
  std::vector<std::byte> record = newRecord(entries);
  changes.insertAt = layout.vlrEnd;
  changes.inserted = record.size();
  changes.patches.push_back({layout.vlrEnd, std::move(record)});
  changes.patches.push_back(patchOf(HeaderAt::vlrCount, layout.vlrCount + 1));
}

/// Enters names into the record that is there, enlarging it when its entries don't suffice.
bool changeLookup(std::span<const std::byte> bytes, const LasRecord& record,
                  const std::vector<ClassName>& names, Changes& changes) {
  const std::size_t whole = record.length / classEntrySize * classEntrySize;
  std::vector<std::byte> entries(bytes.begin() + static_cast<std::ptrdiff_t>(record.data),
                                 bytes.begin() + static_cast<std::ptrdiff_t>(record.data + whole));
  enterNames(names, entries);
  if (entries.size() > whole) {
    if (!record.extended && entries.size() > std::numeric_limits<std::uint16_t>::max()) return false;
    changes.insertAt = record.data + record.length;
    changes.inserted = entries.size() - std::min(entries.size(), record.length);
    const std::uint64_t length = std::max(entries.size(), record.length);
    changes.patches.push_back(
        record.extended ? patchOf(record.head + recordLengthAt, length)
                        : patchOf(record.head + recordLengthAt, static_cast<std::uint16_t>(length)));
  }
  changes.patches.push_back({record.data, std::move(entries)});
  return true;
}

bool planNames(const PointCloud::State& cloud, const std::vector<ClassName>& names, Changes& changes,
               std::string& error) {
  if (names.empty()) return true;
  const LasRecord* const record = cloud.layout.findSpecRecord(classLookupId);
  bool fits = true;
  if (record)
    fits = changeLookup(cloud.file->bytes(), *record, names, changes);
  else
    addLookup(cloud.layout, names, changes);
  if (fits && (changes.inserted == 0 || shiftHeader(cloud, changes))) return true;
  error = "The header of \"" + cloud.path +
          "\" has no room for the names of new classes. Write it anew with "
          "the program it came from.";
  return false;
}

/// Adds the bytes from `from` to `to`, cut into pieces, and at the place where bytes are inserted.
void addPieces(std::size_t from, std::size_t to, const Changes& changes, std::vector<Piece>& pieces) {
  while (from < to) {
    std::size_t end = std::min(to, from + copySize);
    if (changes.inserted != 0 && from < changes.insertAt) end = std::min(end, changes.insertAt);
    pieces.push_back({from, end - from, std::nullopt});
    from = end;
  }
}

std::vector<Piece> piecesOf(const PointCloud::State& cloud, const Changes& changes) {
  const LasLayout& layout = cloud.layout;
  const std::size_t blockSize = std::size_t{blockPoints} * layout.recordLength;
  const std::size_t size = cloud.file->bytes().size();
  std::vector<Piece> pieces;
  std::size_t done = 0;
  for (std::size_t block = 0; block < cloud.changedClasses.size(); ++block) {
    if (!cloud.changedClasses[block]) continue;
    const std::size_t start = layout.pointOffset + block * blockSize;
    const std::size_t end =
        std::min(start + blockSize, layout.pointOffset + std::size_t{layout.points} * layout.recordLength);
    addPieces(done, start, changes, pieces);
    pieces.push_back({start, end - start, block});
    done = end;
  }
  addPieces(done, size, changes, pieces);
  return pieces;
}

/// The bytes of a block with its classes as changed, in `buffer`.
void patchBlock(const PointCloud::State& cloud, const Piece& piece, std::vector<std::byte>& buffer) {
  const LasLayout& layout = cloud.layout;
  buffer.resize(piece.size);
  std::memcpy(buffer.data(), cloud.file->bytes().data() + piece.from, piece.size);
  const std::uint8_t* const classes = cloud.changedClasses[*piece.block].get();
  const auto mask = static_cast<std::byte>(layout.classMask);
  std::size_t at = layout.classAt;
  for (std::size_t i = 0; at < piece.size; ++i, at += layout.recordLength)
    buffer[at] = (buffer[at] & ~mask) | (static_cast<std::byte>(classes[i]) & mask);
}

bool writePieces(const PointCloud::State& cloud, const Changes& changes, AtomicFile& file,
                 std::string& error) {
  const std::vector<Piece> pieces = piecesOf(cloud, changes);
  std::atomic<bool> failed{false};
  std::mutex firstError;
  tbb::enumerable_thread_specific<std::vector<std::byte>> buffers;
  tbb::parallel_for(std::size_t{0}, pieces.size(), [&](std::size_t i) {
    if (failed) return;
    const Piece& piece = pieces[i];
    const std::uint64_t to = piece.from + (piece.from >= changes.insertAt ? changes.inserted : 0);
    std::string problem;
    bool good = true;
    if (piece.block) {
      std::vector<std::byte>& buffer = buffers.local();
      patchBlock(cloud, piece, buffer);
      good = file.write(to, buffer, problem);
    } else {
      good = file.write(to, cloud.file->bytes().subspan(piece.from, piece.size), problem);
    }
    if (good) return;
    const std::lock_guard lock(firstError);
    if (!failed.exchange(true)) error = problem;
  });
  return !failed;
}

} // namespace

bool writeCloud(const PointCloud& cloud, const std::vector<ClassName>& addedNames, const std::string& path,
                std::string& error) {
  error = nameProblem(cloud, addedNames);
  if (!error.empty()) return false;
  Changes changes;
  if (!planNames(cloud.inner(), addedNames, changes, error)) return false;
  const auto file = AtomicFile::create(path, error);
  if (!file || !file->reserve(cloud.inner().file->bytes().size() + changes.inserted, error)) return false;
  if (!writePieces(cloud.inner(), changes, *file, error)) return false;
  for (const Patch& patch : changes.patches)
    if (!file->write(patch.at, patch.bytes, error)) return false;
  return file->commit(error);
}

} // namespace Zamt::Host
