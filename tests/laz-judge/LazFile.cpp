#include "tests/laz-judge/LazFile.h"

#include "tests/laz-judge/chunks.h"
#include "tests/laz-judge/integers.h"

#include <memory>

namespace Zamt::Testing::Laz {
namespace {

constexpr std::uint16_t compressorRecord = 22204;

std::string textAt(std::string_view bytes, std::size_t at, std::size_t size) {
  const std::string_view field = bytes.substr(at, size);
  return std::string(field.substr(0, field.find('\0')));
}

std::uint16_t sizeOf(std::uint16_t type) {
  switch (type) {
  case LazItem::point10: return 20;
  case LazItem::gpsTime:
  case LazItem::colourNir14: return 8;
  case LazItem::colour:
  case LazItem::colour14: return 6;
  case LazItem::point14: return 30;
  default: return 29;
  }
}

// The items of a point, in the versions that are normally written.
std::vector<LazItem> itemsOf(unsigned format, unsigned recordLength, std::uint16_t layeredVersion) {
  using enum LazItem::Type;
  static const std::vector<std::uint16_t> types[] = {{point10},
                                                     {point10, gpsTime},
                                                     {point10, colour},
                                                     {point10, gpsTime, colour},
                                                     {point10, gpsTime, wavePacket},
                                                     {point10, gpsTime, colour, wavePacket},
                                                     {point14},
                                                     {point14, colour14},
                                                     {point14, colourNir14},
                                                     {point14, wavePacket14},
                                                     {point14, colourNir14, wavePacket14}};
  if (format >= std::size(types)) throw LazError("There is no such point format.");
  const auto version = [&](std::uint16_t type) -> std::uint16_t {
    return format >= 6 ? layeredVersion : type == wavePacket ? 1 : 2;
  };
  std::vector<LazItem> items;
  unsigned size = 0;
  for (const std::uint16_t type : types[format]) {
    items.push_back({type, sizeOf(type), version(type)});
    size += sizeOf(type);
  }
  if (recordLength < size) throw LazError("The records are shorter than their point format.");
  const std::uint16_t extra = format >= 6 ? bytes14 : bytes;
  if (recordLength > size)
    items.push_back({extra, static_cast<std::uint16_t>(recordLength - size), version(extra)});
  return items;
}

void readRecords(LazFile& file, std::string_view bytes) {
  std::size_t at = numberAt<std::uint16_t>(bytes.data(), 94);
  for (auto left = numberAt<std::uint32_t>(bytes.data(), 100); left > 0; --left) {
    if (at + 54 > file.front.size()) throw LazError("The records reach into the points.");
    const auto size = numberAt<std::uint16_t>(bytes.data(), at + 20);
    LasRecord record{textAt(bytes, at + 2, 16), numberAt<std::uint16_t>(bytes.data(), at + 18), at + 54, {}};
    if (record.payloadAt + size > file.front.size()) throw LazError("The records reach into the points.");
    record.payload = bytes.substr(record.payloadAt, size);
    file.records.push_back(record);
    at += 54U + size;
  }
}

// What LAS and LAZ files begin with.
LazFile readFront(std::string_view bytes) {
  if (bytes.size() < 227 || !bytes.starts_with("LASF")) throw LazError("This is no LAS file.");
  LazFile file;
  const auto offset = numberAt<std::uint32_t>(bytes.data(), 96);
  const auto headerSize = numberAt<std::uint16_t>(bytes.data(), 94);
  if (headerSize < (bytes[25] >= 4 ? 375 : 227) || offset < headerSize || offset > bytes.size())
    throw LazError("The header contradicts the file.");
  file.front = bytes.substr(0, offset);
  file.format = static_cast<std::uint8_t>(bytes[104]) & 0x3FU;
  file.recordLength = numberAt<std::uint16_t>(bytes.data(), 105);
  readRecords(file, bytes);
  return file;
}

const LasRecord& compressorOf(const LazFile& file) {
  for (const LasRecord& record : file.records)
    if (record.userId == "laszip encoded" && record.id == compressorRecord) return record;
  throw LazError("The file does not say how it is compressed.");
}

void readCompressor(LazFile& file) {
  if (static_cast<std::uint8_t>(file.front[104]) >> 6 != 2)
    throw LazError("The format of the points is not marked as compressed.");
  const std::string& payload = compressorOf(file).payload;
  if (payload.size() < 34 || payload.size() != 34U + 6U * numberAt<std::uint16_t>(payload.data(), 32))
    throw LazError("The record of the compressor has the wrong length.");
  if (numberAt<std::uint16_t>(payload.data(), 0) != (file.layered() ? 3 : 2) ||
      numberAt<std::uint16_t>(payload.data(), 2) != 0)
    throw LazError("The compressor is too old or does not exist.");
  file.chunkSize = numberAt<std::uint32_t>(payload.data(), 12);
  if (file.chunkSize == 0) file.chunkSize = LazFile::variable;
  file.items = itemsOf(file.format, file.recordLength, 3);
  if (payload.size() != 34 + 6 * file.items.size())
    throw LazError("The items do not make up the point format.");
  const auto layeredVersion = numberAt<std::uint16_t>(payload.data(), 38);
  if (file.layered() && (layeredVersion < 2 || layeredVersion > 4))
    throw LazError("The items are of an unknown version.");
  file.items = itemsOf(file.format, file.recordLength, layeredVersion);
  if (std::memcmp(payload.data() + 34, file.items.data(), payload.size() - 34) != 0)
    throw LazError("The items are too old or do not make up the point format.");
}

std::uint64_t countIn(std::string_view bytes) {
  const auto large = bytes[25] >= 4 ? numberAt<std::uint64_t>(bytes.data(), 247) : 0;
  return large != 0 ? large : numberAt<std::uint32_t>(bytes.data(), 107);
}

// Where the table of chunks may be. Writers that could not seek put its place behind it.
std::vector<std::uint64_t> tablePlaces(const LazFile& file, std::string_view bytes) {
  if (bytes.size() < file.front.size() + 8) throw LazError("The file ends before its points.");
  const auto stored = numberAt<std::uint64_t>(bytes.data(), file.front.size());
  if (stored != ~std::uint64_t{0}) return {stored};
  std::vector<std::uint64_t> places{numberAt<std::uint64_t>(bytes.data(), bytes.size() - 8)};
  const auto records = bytes[25] >= 4 ? numberAt<std::uint64_t>(bytes.data(), 235) : 0;
  if (records >= 8 && records <= bytes.size())
    places.push_back(numberAt<std::uint64_t>(bytes.data(), records - 8));
  return places;
}

// Reads the table at `place`, if there is a sound one, and leaves in `backAt` where it ends.
bool readTable(LazFile& file, std::string_view bytes, std::uint64_t place) {
  std::uint64_t start = file.front.size() + 8;
  if (place < start || place > bytes.size() || bytes.size() - place < 8) return false;
  const auto chunks = numberAt<std::uint32_t>(bytes.data(), place + 4);
  if (numberAt<std::uint32_t>(bytes.data(), place) != 0 || chunks > (place - start) / file.recordLength)
    return false;
  const auto* begin = reinterpret_cast<const std::uint8_t*>(bytes.data()) + place + 8;
  Decoder coder(begin, begin + (chunks > 0 ? bytes.size() - place - 8 : 0));
  auto model = std::make_unique<IntegerModel<32, 2>>();
  std::uint64_t left = countIn(bytes);
  std::int32_t points = 0, size = 0;
  for (std::uint32_t i = 0; i < chunks; ++i) {
    std::uint64_t count = std::min<std::uint64_t>(left, file.chunkSize);
    if (file.chunkSize == LazFile::variable)
      count = static_cast<std::uint32_t>(points = model->code(coder, 0, points, 0));
    size = model->code(coder, 1, size, 0);
    const LazChunk chunk{start, static_cast<std::uint32_t>(size), count};
    if (chunk.bytes == 0 || chunk.bytes > place - start || count == 0 || count > left) return false;
    start += chunk.bytes;
    left -= count;
    file.chunks.push_back(chunk);
  }
  file.backAt = place + 8 + static_cast<std::uint64_t>(coder.position() - begin);
  return start == place && left == 0 && (chunks == 0 || !coder.broken);
}

void findChunks(LazFile& file, std::string_view bytes) {
  for (const std::uint64_t place : tablePlaces(file, bytes)) {
    file.chunks.clear();
    file.tableUsed = readTable(file, bytes, place);
    if (!file.tableUsed) continue;
    file.streamed = numberAt<std::uint64_t>(bytes.data(), file.front.size()) == ~std::uint64_t{0};
    if (file.streamed) file.backAt += 8;
    if (file.backAt > bytes.size()) throw LazError("The file ends behind its table of chunks.");
    return;
  }
}

void decodeByTable(LazFile& file, std::string_view bytes) {
  for (const LazChunk& chunk : file.chunks)
    if (decodeChunk(file, bytes.substr(chunk.start, chunk.bytes), chunk.points, file.points) != chunk.bytes)
      throw LazError("A chunk has another length than the table says.");
}

void decodeByWalking(LazFile& file, std::string_view bytes) {
  if (file.chunkSize == LazFile::variable) throw LazError("There is no sound table of the chunks.");
  file.chunks.clear();
  file.points.clear();
  file.tableUsed = file.streamed = false;
  file.backAt = file.front.size() + 8;
  for (std::uint64_t left = countIn(bytes); left > 0;) {
    const std::uint64_t count = std::min<std::uint64_t>(left, file.chunkSize);
    const std::size_t size = decodeChunk(file, bytes.substr(file.backAt), count, file.points);
    file.chunks.push_back({file.backAt, size, count});
    file.backAt += size;
    left -= count;
  }
}

std::string tableOf(const LazFile& file, const std::vector<std::size_t>& sizes) {
  std::string table(8, '\0');
  putNumber(table.data(), 4, static_cast<std::uint32_t>(sizes.size()));
  if (sizes.empty()) return table;
  Encoder coder;
  auto model = std::make_unique<IntegerModel<32, 2>>();
  std::int32_t points = 0, size = 0;
  for (std::size_t i = 0; i < sizes.size(); ++i) {
    if (file.chunkSize == LazFile::variable)
      points = model->code(coder, 0, points, static_cast<std::int32_t>(file.chunks[i].points));
    size = model->code(coder, 1, size, static_cast<std::int32_t>(sizes[i]));
  }
  return table + coder.finish();
}

void moveOffset(std::string& bytes, std::size_t at, std::uint64_t from, std::uint64_t by) {
  const auto offset = numberAt<std::uint64_t>(bytes.data(), at);
  if (offset != 0 && offset != ~std::uint64_t{0} && offset >= from) putNumber(bytes.data(), at, offset + by);
}

std::string compressorRecordOf(const std::vector<LazItem>& items, bool layered, std::uint32_t chunkSize) {
  std::string record(54 + 34, '\0');
  record.replace(2, 14, "laszip encoded");
  putNumber(record.data(), 18, compressorRecord);
  putNumber(record.data(), 20, static_cast<std::uint16_t>(34 + 6 * items.size()));
  putNumber(record.data(), 54, static_cast<std::uint16_t>(layered ? 3 : 2));
  record.replace(58, 4, layered ? std::string("\3\4\3\0", 4) : std::string("\2\2\0\0", 4));
  putNumber(record.data(), 54 + 12, chunkSize);
  putNumber(record.data(), 54 + 16, std::int64_t{-1});
  putNumber(record.data(), 54 + 24, std::int64_t{-1});
  putNumber(record.data(), 54 + 32, static_cast<std::uint16_t>(items.size()));
  return record.append(reinterpret_cast<const char*>(items.data()), 6 * items.size());
}

} // namespace

LazFile decodeLaz(std::string_view bytes) {
  LazFile file = readFront(bytes);
  readCompressor(file);
  findChunks(file, bytes);
  // The header's count is a claim; this much is what compressed points may well come to.
  file.points.reserve(std::min(countIn(bytes), 16 * bytes.size() / file.recordLength) * file.recordLength);
  try {
    if (file.tableUsed)
      decodeByTable(file, bytes);
    else
      decodeByWalking(file, bytes);
  } catch (const LazError&) {
    if (!file.tableUsed || file.chunkSize == LazFile::variable) throw;
    decodeByWalking(file, bytes);
  }
  file.back = bytes.substr(file.backAt);
  return file;
}

std::string encodeLaz(const LazFile& file) {
  std::string bytes = file.front + std::string(8, '\0');
  std::vector<std::size_t> sizes;
  std::string_view points = file.points;
  for (const LazChunk& chunk : file.chunks) {
    const std::string encoded = encodeChunk(file, points.substr(0, chunk.points * file.recordLength));
    points.remove_prefix(chunk.points * file.recordLength);
    sizes.push_back(encoded.size());
    bytes += encoded;
  }
  const std::uint64_t place = bytes.size();
  putNumber(bytes.data(), file.front.size(), file.streamed ? ~std::uint64_t{0} : place);
  bytes += tableOf(file, sizes);
  if (file.streamed) bytes.append(reinterpret_cast<const char*>(&place), 8);
  const std::uint64_t moved = bytes.size() - file.backAt;
  if (bytes[25] >= 3) moveOffset(bytes, 227, file.backAt, moved);
  if (bytes[25] >= 4) moveOffset(bytes, 235, file.backAt, moved);
  moveOffset(bytes, compressorOf(file).payloadAt + 24, file.backAt, moved);
  return bytes += file.back;
}

LazFile fromLas(std::string_view las, std::uint32_t chunkSize, const std::vector<std::uint64_t>& counts,
                std::uint16_t version) {
  const LazFile plain = readFront(las);
  const auto items = itemsOf(plain.format, plain.recordLength, version);
  if (!counts.empty()) chunkSize = LazFile::variable;
  const std::string record = compressorRecordOf(items, plain.layered(), chunkSize);
  std::string front = plain.front;
  const std::size_t end = plain.records.empty()
                              ? numberAt<std::uint16_t>(las.data(), 94)
                              : plain.records.back().payloadAt + plain.records.back().payload.size();
  front.insert(end, record);
  putNumber(front.data(), 96, static_cast<std::uint32_t>(front.size()));
  putNumber(front.data(), 100, static_cast<std::uint32_t>(plain.records.size() + 1));
  front[104] = static_cast<char>(plain.format | 0x80);

  LazFile file = readFront(front);
  readCompressor(file);
  std::uint64_t left = countIn(las);
  if (left > (las.size() - plain.front.size()) / plain.recordLength)
    throw LazError("The file ends in its points.");
  file.points = las.substr(plain.front.size(), left * plain.recordLength);
  file.backAt = plain.front.size() + file.points.size();
  file.back = las.substr(file.backAt);
  for (std::size_t i = 0; left > 0; ++i) {
    const std::uint64_t points = std::min<std::uint64_t>(left, counts.empty() ? chunkSize : counts.at(i));
    file.chunks.push_back({0, 0, points});
    left -= points;
  }
  return file;
}

} // namespace Zamt::Testing::Laz
