#include "host/clouds/las/LasEdits.h"

#include <algorithm>
#include <limits>
#include <tuple>

namespace Zamt::Host {

namespace {

/// Untouched bytes are copied in pieces of at most this many: large enough that a call costs nothing beside
/// its work, small enough that two threads share the work evenly.
constexpr std::size_t copySize = std::size_t{8} << 20;

} // namespace

void LasEdits::add(Edit edit) {
  const auto key = [](const Edit& each) { return std::tuple(each.at, each.ofPoints); };
  edits_.insert(std::ranges::upper_bound(edits_, key(edit), {}, key), std::move(edit));
}

void LasEdits::replace(std::size_t at, std::vector<std::byte> bytes) {
  const std::size_t size = bytes.size();
  add({at, size, size, std::move(bytes), false});
}

void LasEdits::insert(std::size_t at, std::vector<std::byte> bytes) {
  const std::size_t size = bytes.size();
  add({at, 0, size, std::move(bytes), false});
}

void LasEdits::remove(std::size_t at, std::size_t size) { add({at, size, 0, {}, false}); }

void LasEdits::replacePoints(std::size_t from, std::size_t to, std::uint64_t size) {
  add({from, to - from, size, {}, true});
}

std::uint64_t LasEdits::moved(std::uint64_t place) const {
  std::uint64_t to = place; // what is taken away is less than what it is taken from, so nothing wraps
  for (const Edit& edit : edits_)
    if (edit.at + edit.removed <= place) to = to + edit.added - edit.removed;
  return to;
}

std::uint64_t LasEdits::movedPoints(std::size_t pointOffset) const {
  std::uint64_t to = pointOffset;
  for (const Edit& edit : edits_)
    if (!edit.ofPoints && edit.at + edit.removed <= pointOffset) to = to + edit.added - edit.removed;
  return to;
}

bool LasEdits::movesNothing() const {
  return std::ranges::all_of(edits_, [](const Edit& edit) { return edit.added == edit.removed; });
}

bool LasEdits::isKept(std::uint64_t place) const {
  return std::ranges::none_of(edits_, [&](const Edit& edit) {
    return edit.ofPoints && edit.at <= place && place - edit.at < edit.removed;
  });
}

bool LasEdits::writeTo(std::span<const std::byte> input, AtomicFile& file, std::string& error) const {
  for (const LasStretch stretch : kept(0, input.size()))
    if (!file.write(moved(stretch.from), input.subspan(stretch.from, stretch.size), error)) return false;
  return writeAdded(file, error);
}

std::vector<LasStretch> LasEdits::kept(std::size_t from, std::size_t to) const {
  std::vector<LasStretch> stretches;
  const auto add = [&](std::size_t end) {
    while (from < end) {
      const std::size_t size = std::min(end - from, copySize);
      stretches.push_back({from, size});
      from += size;
    }
  };
  for (const Edit& edit : edits_) {
    if (edit.at + edit.removed < from) continue;
    if (edit.at >= to) break;
    add(edit.at);
    from = std::max(from, edit.at + edit.removed);
  }
  add(to);
  return stretches;
}

bool LasEdits::writeAdded(AtomicFile& file, std::string& error) const {
  std::uint64_t more = 0; // bytes in the output than in the input, so far; wraps where there are fewer
  for (const Edit& edit : edits_) {
    if (!edit.bytes.empty() && !file.write(edit.at + more, edit.bytes, error)) return false;
    more = more + edit.added - edit.removed;
  }
  return true;
}

bool moveHeaderPlaces(std::span<const std::byte> input, const LasLayout& layout, const std::string& path,
                      LasEdits& edits, std::string& error) {
  if (!recordsClearPoints(input, layout, path, error)) return false;
  const std::uint64_t points = edits.movedPoints(layout.pointOffset);
  if (points > std::numeric_limits<std::uint32_t>::max()) {
    error = "The header of \"" + path +
            "\" has no room for the names of new classes. Write it anew with the program it came from.";
    return false;
  }
  if (points != layout.pointOffset)
    replaceNumber(edits, HeaderAt::pointOffset, static_cast<std::uint32_t>(points));
  if (edits.vlrs() != 0)
    replaceNumber(edits, HeaderAt::vlrCount, layout.vlrCount + static_cast<std::uint32_t>(edits.vlrs()));
  const auto move = [&](std::size_t at) {
    const auto place = readAt<std::uint64_t>(&input[at]);
    const std::uint64_t to = place == 0 || !edits.isKept(place) ? 0 : edits.moved(place);
    if (to != place) replaceNumber(edits, at, to);
  };
  if (layout.versionMinor >= 3 && layout.headerSize >= HeaderAt::evlrStart) move(HeaderAt::waveformStart);
  if (layout.versionMinor >= 4 && layout.headerSize >= headerOf14) move(HeaderAt::evlrStart);
  return true;
}

} // namespace Zamt::Host
