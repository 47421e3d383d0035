#include "host/clouds/laz/LazFormat.h"

#include "host/clouds/laz/bytes.h"

#include <algorithm>
#include <array>

namespace Zamt::Host {

namespace {

using Laz::load;
using Laz::store;

namespace At {
constexpr std::size_t compressor = 0;
constexpr std::size_t coder = 2;
constexpr std::size_t major = 4;
constexpr std::size_t minor = 5;
constexpr std::size_t revision = 6;
constexpr std::size_t chunkSize = 12;
constexpr std::size_t specialCount = 16;
constexpr std::size_t itemCount = 32;
constexpr std::size_t items = 34;
} // namespace At

constexpr std::size_t itemSize = 6;
constexpr std::uint32_t variableChunks = 0xFFFFFFFF;
constexpr unsigned pointwise = 2;
constexpr unsigned layered = 3;
constexpr std::size_t streamEnd = 4; ///< The bytes of a stream that codes nothing.

/// The items of a point format in the order of its record, and the versions that are written and read.
struct ItemRule {
  LazItemType type;
  std::uint16_t size; ///< 0 for as many as there are.
  std::uint16_t written;
  std::uint16_t least;
  std::uint16_t most;
  std::uint16_t formats; ///< The point formats that have it, as bits.
};
constexpr std::array<ItemRule, 10> itemRules{{
    {LazItemType::Point10, 20, 2, 2, 2, 0x03F},
    {LazItemType::Time11, 8, 2, 2, 2, 0x03A},
    {LazItemType::Colour12, 6, 2, 2, 2, 0x02C},
    {LazItemType::WavePacket13, 29, 1, 1, 1, 0x030},
    {LazItemType::Bytes, 0, 2, 2, 2, 0x03F},
    {LazItemType::Point14, 30, 3, 2, 4, 0x7C0},
    {LazItemType::Colour14, 6, 3, 2, 4, 0x080},
    {LazItemType::ColourInfrared14, 8, 3, 2, 4, 0x500},
    {LazItemType::WavePacket14, 29, 3, 3, 4, 0x600},
    {LazItemType::Bytes14, 0, 3, 2, 4, 0x7C0},
}};

/// The rules of the items that points of that format and length have, each with its size.
std::vector<ItemRule> rulesFor(unsigned pointFormat, std::size_t recordLength) {
  std::vector<ItemRule> rules;
  std::size_t rest = recordLength;
  for (ItemRule rule : itemRules) {
    if ((rule.formats >> pointFormat & 1) == 0) continue;
    if (rule.size == 0) rule.size = static_cast<std::uint16_t>(rest);
    rest -= std::min<std::size_t>(rest, rule.size);
    if (rule.size > 0) rules.push_back(rule);
  }
  return rules;
}

std::size_t standardLength(unsigned pointFormat) {
  std::size_t length = 0;
  for (const ItemRule& rule : itemRules)
    if (rule.formats >> pointFormat & 1) length += rule.size;
  return length;
}

struct PartRule {
  LazPartKind kind;
  std::uint16_t size;
};

std::vector<PartRule> partsOf(const LazItem& item) {
  using enum LazPartKind;
  switch (item.type) {
  case LazItemType::Point10:
    return {{X, 4},         {Y, 4},        {Z, 4},          {Intensity, 2}, {Returns, 1}, {Classification, 1},
            {ScanAngle, 1}, {UserData, 1}, {PointSource, 2}};
  case LazItemType::Point14:
    return {{X, 4},
            {Y, 4},
            {Z, 4},
            {Intensity, 2},
            {Returns, 1},
            {Flags, 1},
            {Classification, 1},
            {UserData, 1},
            {ScanAngle, 2},
            {PointSource, 2},
            {GpsTime, 8}};
  case LazItemType::Time11: return {{GpsTime, 8}};
  case LazItemType::Colour12:
  case LazItemType::Colour14: return {{Colour, 6}};
  case LazItemType::ColourInfrared14: return {{Colour, 6}, {Infrared, 2}};
  case LazItemType::WavePacket13:
  case LazItemType::WavePacket14: return {{WavePacket, 29}};
  case LazItemType::Bytes:
  case LazItemType::Bytes14: return std::vector<PartRule>(item.size, {ExtraByte, 1});
  }
  return {};
}

void addParts(LazFormat& format) {
  std::uint16_t offset = 0;
  for (const LazItem& item : format.items)
    for (const PartRule& part : partsOf(item)) {
      format.parts.push_back({part.kind, offset, part.size});
      offset = static_cast<std::uint16_t>(offset + part.size);
    }
}

std::string quoted(const std::string& path) { return "\"" + path + "\""; }

/// What is said of a record that no compressor writes.
std::string damaged(const std::string& path, const std::string& what) {
  return "The LAZ record of " + quoted(path) + " is damaged: " + what +
         ". Fetch the file again, or have the program that wrote it write it again.";
}

std::string tooOld(const std::string& path) {
  return quoted(path) + " was written by a LAZ compressor of 2010 or 2011 (LAZ 1.x), which can't be read. "
                        "Convert it with a current LAZ tool first.";
}

std::string unknown(const std::string& path, const std::string& what) {
  return quoted(path) + " is compressed with " + what +
         ", which can't be read. Convert it to LAS 1.4, or to LAZ with another tool, first.";
}

std::vector<LazItem> readItems(std::span<const std::byte> data) {
  std::vector<LazItem> items;
  for (std::size_t at = At::items; at < data.size(); at += itemSize)
    items.push_back({static_cast<LazItemType>(load<std::uint16_t>(&data[at])),
                     load<std::uint16_t>(&data[at + 2]), load<std::uint16_t>(&data[at + 4])});
  return items;
}

bool isOldItem(const LazItem& item) {
  return item.version == 1 && (item.type == LazItemType::Point10 || item.type == LazItemType::Time11 ||
                               item.type == LazItemType::Colour12 || item.type == LazItemType::Bytes);
}

/// What is wrong with the compressor and the coder; empty if nothing is.
std::string coderProblem(std::span<const std::byte> data, unsigned pointFormat, const std::string& path) {
  const unsigned compressor = load<std::uint16_t>(&data[At::compressor]);
  const unsigned coder = load<std::uint16_t>(&data[At::coder]);
  if (coder != 0) return unknown(path, "coder " + std::to_string(coder));
  if (compressor == 1) return tooOld(path);
  if (compressor != pointwise && compressor != layered)
    return unknown(path, "compressor " + std::to_string(compressor));
  if ((compressor == layered) != (pointFormat >= 6))
    return damaged(path, "compressor " + std::to_string(compressor) + " does not code points of format " +
                             std::to_string(pointFormat));
  return {};
}

/// What is wrong with the items of points of that format and length; empty if nothing is.
std::string itemsProblem(const std::vector<LazItem>& items, unsigned pointFormat, std::size_t recordLength,
                         const std::string& path) {
  std::size_t length = 0;
  for (const LazItem& item : items) {
    const auto rule =
        std::ranges::find_if(itemRules, [&](const ItemRule& each) { return each.type == item.type; });
    if (rule == itemRules.end())
      return unknown(path, "items of type " + std::to_string(static_cast<unsigned>(item.type)));
    if (isOldItem(item)) return tooOld(path);
    if (item.version < rule->least || item.version > rule->most)
      return unknown(path, "version " + std::to_string(item.version) + " of items of type " +
                               std::to_string(static_cast<unsigned>(item.type)));
    length += item.size;
  }
  if (length != recordLength)
    return damaged(path, "its items take " + std::to_string(length) + " bytes, but a point has " +
                             std::to_string(recordLength));
  const bool fits = std::ranges::equal(items, rulesFor(pointFormat, recordLength),
                                       [](const LazItem& item, const ItemRule& rule) {
                                         return item.type == rule.type && item.size == rule.size;
                                       });
  return fits ? std::string{}
              : damaged(path, "its items are not those of point format " + std::to_string(pointFormat));
}

std::string recordProblem(std::span<const std::byte> data, unsigned pointFormat, std::size_t recordLength,
                          const std::string& path) {
  if (data.size() < At::items)
    return damaged(path, "it has " + std::to_string(data.size()) + " bytes, fewer than any has");
  std::string problem = coderProblem(data, pointFormat, path);
  if (!problem.empty()) return problem;
  const std::size_t items = load<std::uint16_t>(&data[At::itemCount]);
  if (data.size() != At::items + itemSize * items)
    return damaged(path, "it says " + std::to_string(items) + " items, but has " +
                             std::to_string(data.size()) + " bytes");
  return itemsProblem(readItems(data), pointFormat, recordLength, path);
}

} // namespace

std::size_t LazFormat::layerCount() const {
  constexpr std::size_t pointLayers = 9;
  if (!isLayered()) return 0;
  // the eleven parts of Point14 have nine layers, every part behind them one
  return pointLayers + parts.size() - 11;
}

std::size_t LazFormat::smallestChunk() const {
  const std::size_t streams = isLayered() ? 2 * streamEnd : streamEnd;
  return recordLength + streams + (isLayered() ? 4 + 4 * layerCount() : 0);
}

std::size_t LazFormat::partAt(std::size_t offset) const {
  const auto behind = std::ranges::upper_bound(parts, offset, {}, &LazPart::offset);
  return static_cast<std::size_t>(behind - parts.begin()) - 1;
}

bool readLazFormat(std::span<const std::byte> data, unsigned pointFormat, std::size_t recordLength,
                   const std::string& path, LazFormat& format, std::string& error) {
  error = recordProblem(data, pointFormat, recordLength, path);
  if (!error.empty()) return false;
  const auto chunkSize = load<std::uint32_t>(&data[At::chunkSize]);
  format = {};
  format.pointFormat = pointFormat;
  format.recordLength = recordLength;
  format.chunkSize = chunkSize == variableChunks ? 0 : chunkSize;
  format.items = readItems(data);
  if (load<std::int64_t>(&data[At::specialCount]) > 0)
    format.specialRecords = load<std::int64_t>(&data[lazSpecialRecordsAt]);
  addParts(format);
  return true;
}

LazFormat newLazFormat(unsigned pointFormat, std::size_t recordLength, std::uint32_t chunkSize) {
  LazFormat format;
  format.pointFormat = pointFormat;
  format.recordLength = std::max(recordLength, standardLength(pointFormat));
  format.chunkSize = chunkSize;
  for (const ItemRule& rule : rulesFor(pointFormat, format.recordLength))
    format.items.push_back({rule.type, rule.size, rule.written});
  addParts(format);
  return format;
}

std::vector<std::byte> lazRecordOf(const LazFormat& format) {
  std::vector<std::byte> data(At::items + itemSize * format.items.size());
  store<std::uint16_t>(&data[At::compressor], format.isLayered() ? layered : pointwise);
  // the versions that are usual with these compressors; no reader looks at them
  store<std::uint8_t>(&data[At::major], format.isLayered() ? 3 : 2);
  store<std::uint8_t>(&data[At::minor], format.isLayered() ? 4 : 2);
  store<std::uint16_t>(&data[At::revision], format.isLayered() ? 3 : 0);
  store<std::uint32_t>(&data[At::chunkSize], format.isVariable() ? variableChunks : format.chunkSize);
  store<std::int64_t>(&data[At::specialCount], format.specialRecords < 0 ? -1 : 1);
  store<std::int64_t>(&data[lazSpecialRecordsAt], format.specialRecords);
  store<std::uint16_t>(&data[At::itemCount], static_cast<std::uint16_t>(format.items.size()));
  std::size_t at = At::items;
  for (const LazItem& item : format.items) {
    store(&data[at], static_cast<std::uint16_t>(item.type));
    store(&data[at + 2], item.size);
    store(&data[at + 4], item.version);
    at += itemSize;
  }
  return data;
}

} // namespace Zamt::Host
