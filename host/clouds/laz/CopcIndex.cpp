#include "host/clouds/laz/CopcIndex.h"

#include <algorithm>
#include <cmath>
#include <unordered_map>

namespace Zamt::Host {

namespace {

/// Bytes from the start of the info to its parts.
namespace InfoAt {
constexpr std::size_t centre = 0;
constexpr std::size_t half = 24;
constexpr std::size_t rootOffset = 40;
constexpr std::size_t rootSize = 48;
constexpr std::size_t times = 56;
} // namespace InfoAt

/// Bytes from the start of an entry to its parts.
namespace EntryAt {
constexpr std::size_t key = 0;
constexpr std::size_t offset = 16;
constexpr std::size_t size = 24;
constexpr std::size_t points = 28;
} // namespace EntryAt

constexpr std::size_t infoSize = 160;
constexpr std::size_t entrySize = 32;
constexpr std::int32_t deepestLevel = 30; ///< The places within a level are numbers of 31 bits.
constexpr std::int32_t onOtherPage = -1;

std::string damaged(const std::string& path, const std::string& what) {
  return "The COPC index of \"" + path + "\" is damaged: " + what +
         ". Fetch the file again, or have it written anew as plain LAZ.";
}

/// Reads the pages of one hierarchy.
class HierarchyReader {
public:
  HierarchyReader(const LasFile& file, const LasRecord& record, std::span<const LazChunk> chunks,
                  CopcIndex& index)
      : file_(file),
        record_(record),
        chunks_(chunks),
        index_(index),
        entriesLeft_(record.length / entrySize) {
    for (std::size_t i = 0; i < chunks.size(); ++i) chunkAt_.emplace(chunks[i].offset, i);
  }

  /// What is wrong; empty if nothing is.
  std::string read(std::uint64_t offset, std::uint64_t size) {
    index_.nodes.assign(chunks_.size(), {});
    std::string problem = readPage(offset, size);
    while (problem.empty() && !waiting_.empty()) {
      const std::size_t entry = waiting_.back();
      waiting_.pop_back();
      problem = readPage(number<std::uint64_t>(entry + EntryAt::offset), sizeOfEntry(entry));
    }
    if (problem.empty() && known_ != chunks_.size())
      problem = "it tells of " + std::to_string(known_) + " of " + std::to_string(chunks_.size()) + " chunks";
    return problem;
  }

private:
  template <class T>
  T number(std::size_t at) const {
    return readAt<T>(&file_.bytes()[at]);
  }

  std::uint64_t sizeOfEntry(std::size_t entry) const {
    const auto size = number<std::int32_t>(entry + EntryAt::size);
    return size < 0 ? 0 : static_cast<std::uint64_t>(size);
  }

  std::string readPage(std::uint64_t offset, std::uint64_t size) {
    const std::string page = "the page at byte " + std::to_string(offset);
    if (offset < record_.data || offset - record_.data > record_.length ||
        size > record_.length - (offset - record_.data) || size % entrySize != 0 || size == 0)
      return page + " does not lie within the hierarchy";
    // Pages have no bytes in common, so that more entries than there is room for are a circle.
    if (size / entrySize > entriesLeft_) return page + " is told of twice";
    entriesLeft_ -= size / entrySize;
    for (std::size_t at = 0; at < size; at += entrySize) {
      const std::string problem = readEntry(static_cast<std::size_t>(offset) + at);
      if (!problem.empty()) return "the entry at byte " + std::to_string(offset + at) + " " + problem;
    }
    return {};
  }

  std::string readEntry(std::size_t at) {
    const auto key = number<std::array<std::int32_t, 4>>(at + EntryAt::key);
    if (key[0] < 0 || key[0] > deepestLevel) return "is of no level that can be";
    for (std::size_t axis = 1; axis < 4; ++axis)
      if (key[axis] < 0 || key[axis] >> key[0] != 0) return "is of no node of its level";
    const auto points = number<std::int32_t>(at + EntryAt::points);
    if (points == onOtherPage) {
      waiting_.push_back(at);
      index_.pages.push_back(at);
      return {};
    }
    if (points == 0) return {};
    const auto found = chunkAt_.find(number<std::uint64_t>(at + EntryAt::offset));
    if (found == chunkAt_.end()) return "tells of no chunk";
    const LazChunk& chunk = chunks_[found->second];
    if (points < 0 || chunk.points != static_cast<std::uint32_t>(points) || chunk.size != sizeOfEntry(at))
      return "contradicts its chunk";
    CopcNode& node = index_.nodes[found->second];
    if (node.entry != 0) return "tells of a chunk that another one tells of";
    node = {key, found->second, at};
    ++known_;
    return {};
  }

  const LasFile& file_;
  const LasRecord& record_;
  std::span<const LazChunk> chunks_;
  CopcIndex& index_;
  std::unordered_map<std::uint64_t, std::size_t> chunkAt_;
  std::vector<std::size_t> waiting_; ///< Entries that tell of pages not yet read.
  std::uint64_t entriesLeft_;
  std::size_t known_ = 0; ///< Chunks that have a node.
};

} // namespace

Bounds CopcIndex::boxOf(const CopcNode& node, const LasLayout& layout) const {
  const double edge = std::ldexp(2 * half, -node.key[0]);
  Bounds box;
  for (std::size_t axis = 0; axis < 3; ++axis) {
    const double margin = 2 * std::abs(layout.fields[axis].scale[0]) + 1e-9 * half;
    const double low = centre[axis] - half + edge * node.key[axis + 1];
    box.low[axis] = low - margin;
    box.high[axis] = low + edge + margin;
  }
  return box;
}

bool isCopc(const LasLayout& layout) {
  return layout.versionMinor >= 4 && !layout.records.empty() && !layout.records[0].extended &&
         layout.records[0].userId == copcUserId && layout.records[0].id == copcInfoId;
}

bool readCopcIndex(const LasFile& file, std::span<const LazChunk> chunks, CopcIndex& index,
                   std::string& error) {
  const LasLayout& layout = file.layout;
  const LasRecord* const hierarchy = layout.findRecord(copcUserId, copcHierarchyId);
  const LasRecord& info = layout.records[0];
  std::string problem;
  if (info.length < infoSize)
    problem = "its record of " + std::to_string(info.length) + " bytes is too short";
  else if (!hierarchy || !hierarchy->extended)
    problem = "it has no hierarchy behind the points";
  if (problem.empty()) {
    const std::byte* const data = &file.bytes()[info.data];
    index.info = 0;
    index.hierarchy = static_cast<std::size_t>(hierarchy - layout.records.data());
    index.centre = readAt<std::array<double, 3>>(data + InfoAt::centre);
    index.half = readAt<double>(data + InfoAt::half);
    if (!std::isfinite(index.half + std::abs(index.centre[0]) + std::abs(index.centre[1]) +
                       std::abs(index.centre[2])) ||
        index.half < 0)
      problem = "its cube is none";
    else
      problem = HierarchyReader(file, *hierarchy, chunks, index)
                    .read(readAt<std::uint64_t>(data + InfoAt::rootOffset),
                          readAt<std::uint64_t>(data + InfoAt::rootSize));
  }
  if (!problem.empty()) error = damaged(file.path, problem);
  return problem.empty();
}

void moveCopcPlaces(const LasFile& file, const CopcIndex& index, std::span<const LazChunk> written,
                    LasEdits& edits) {
  const LasRecord& info = file.layout.records[index.info];
  const LasRecord& hierarchy = file.layout.records[index.hierarchy];
  const auto data = file.bytes().subspan(hierarchy.data, hierarchy.length);
  std::vector<std::byte> changed(data.begin(), data.end());
  for (const CopcNode& node : index.nodes) {
    std::byte* const entry = &changed[node.entry - hierarchy.data];
    const LazChunk& chunk = written[node.chunk];
    writeAt(entry + EntryAt::offset, chunk.points == 0 ? 0 : chunk.offset);
    writeAt(entry + EntryAt::size, static_cast<std::int32_t>(chunk.size));
    writeAt(entry + EntryAt::points, static_cast<std::int32_t>(chunk.points));
  }
  for (const std::size_t at : index.pages) {
    std::byte* const entry = &changed[at - hierarchy.data];
    writeAt(entry + EntryAt::offset, edits.moved(readAt<std::uint64_t>(entry + EntryAt::offset)));
  }
  const std::size_t root = info.data + InfoAt::rootOffset;
  replaceNumber(edits, root, edits.moved(readAt<std::uint64_t>(&file.bytes()[root])));
  edits.replace(hierarchy.data, std::move(changed));
}

void setCopcTimes(const LasFile& file, const CopcIndex& index, std::array<double, 2> times, LasEdits& edits) {
  replaceNumber(edits, file.layout.records[index.info].data + InfoAt::times, times);
}

} // namespace Zamt::Host
