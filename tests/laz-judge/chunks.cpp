#include "tests/laz-judge/chunks.h"

#include "tests/laz-judge/layered.h"
#include "tests/laz-judge/pointwise.h"

namespace Zamt::Testing::Laz {
namespace {

const Byte* dataOf(std::string_view bytes) { return reinterpret_cast<const Byte*>(bytes.data()); }

void append(std::string& points, const std::vector<Byte>& record) {
  points.append(reinterpret_cast<const char*>(record.data()), record.size());
}

std::size_t decodePointwise(const LazFile& file, std::string_view bytes, std::uint64_t count,
                            std::string& points) {
  const Byte* first = dataOf(bytes);
  const Byte* begin = first + file.recordLength;
  Decoder coder(begin, first + bytes.size());
  const auto chunk = std::make_unique<PointwiseChunk>(file.items, first);
  std::vector<Byte> last(first, begin), now(file.recordLength);
  append(points, last);
  for (std::uint64_t i = 1; i < count && !coder.broken && !chunk->broken; ++i) {
    chunk->code(coder, last.data(), now.data());
    append(points, now);
    now.swap(last);
  }
  if (coder.broken || chunk->broken) throw LazError("The points of a chunk are broken.");
  return static_cast<std::size_t>(coder.position() - first);
}

std::size_t layersOf(const LazItem& item) {
  if (item.type == LazItem::point14) return 9;
  if (item.type == LazItem::bytes14) return item.size;
  return item.type == LazItem::colourNir14 ? 2 : 1;
}

std::size_t layersOf(const std::vector<LazItem>& items) {
  std::size_t count = 0;
  for (const LazItem& item : items) count += layersOf(item);
  return count;
}

std::vector<Layer<Decoder>> layersIn(const LazFile& file, std::string_view bytes, std::size_t& end) {
  const std::size_t count = layersOf(file.items);
  const std::size_t sizes = file.recordLength + 4;
  end = sizes + 4 * count;
  if (bytes.size() < end) throw LazError("A chunk ends in its own head.");
  std::vector<Layer<Decoder>> layers;
  for (std::size_t i = 0; i < count; ++i) {
    const auto size = numberAt<std::uint32_t>(bytes.data(), sizes + 4 * i);
    if (size > bytes.size() - end) throw LazError("A layer reaches beyond its chunk.");
    const Byte* begin = dataOf(bytes) + end;
    layers.push_back({Decoder(begin, begin + size), size > 0});
    end += size;
  }
  return layers;
}

void checkEnds(const std::vector<Layer<Decoder>>& layers) {
  for (std::size_t i = 0; i < layers.size(); ++i)
    if (layers[i].used && !layers[i].coder.endsHere())
      throw LazError("Layer " + std::to_string(i) + " of a chunk is broken.");
}

std::size_t decodeLayered(const LazFile& file, std::string_view bytes, std::uint64_t count,
                          std::string& points) {
  std::size_t end = 0;
  auto layers = layersIn(file, bytes, end);
  if (numberAt<std::uint32_t>(bytes.data(), file.recordLength) != count)
    throw LazError("A chunk has another number of points than the file says.");
  LayeredChunk chunk(file.items, dataOf(bytes));
  std::vector<Byte> now(dataOf(bytes), dataOf(bytes) + file.recordLength);
  append(points, now);
  for (std::uint64_t i = 1; i < count && !layers[0].coder.broken; ++i) {
    chunk.code(layers.data(), now.data());
    append(points, now);
  }
  checkEnds(layers);
  if (chunk.broken()) throw LazError("The times of a chunk are broken.");
  return end;
}

std::string encodePointwise(const LazFile& file, std::string_view points) {
  const std::size_t size = file.recordLength;
  const Byte* last = dataOf(points);
  Encoder coder;
  const auto chunk = std::make_unique<PointwiseChunk>(file.items, last);
  std::vector<Byte> now(size);
  for (const Byte* end = last + points.size() - size; last < end; last += size) {
    std::copy_n(last + size, size, now.begin());
    chunk->code(coder, last, now.data());
  }
  return std::string(points.substr(0, size)) + coder.finish();
}

void appendNumber(std::string& bytes, std::size_t number) {
  bytes.resize(bytes.size() + 4);
  putNumber(bytes.data(), bytes.size() - 4, static_cast<std::uint32_t>(number));
}

std::string encodeLayered(const LazFile& file, std::string_view points) {
  const std::size_t size = file.recordLength;
  std::vector<Layer<Encoder>> layers(layersOf(file.items));
  LayeredChunk chunk(file.items, dataOf(points));
  layers[0].used = layers[1].used = true;
  std::vector<Byte> now(size);
  for (std::size_t at = size; at < points.size(); at += size) {
    std::copy_n(dataOf(points) + at, size, now.begin());
    chunk.code(layers.data(), now.data());
  }
  std::string bytes(points.substr(0, size)), streams;
  appendNumber(bytes, points.size() / size);
  for (Layer<Encoder>& layer : layers) {
    const std::string stream = layer.used ? layer.coder.finish() : std::string();
    appendNumber(bytes, stream.size());
    streams += stream;
  }
  return bytes + streams;
}

} // namespace

std::size_t decodeChunk(const LazFile& file, std::string_view bytes, std::uint64_t count,
                        std::string& points) {
  if (bytes.size() < file.recordLength) throw LazError("A chunk ends in its first point.");
  return file.layered() ? decodeLayered(file, bytes, count, points)
                        : decodePointwise(file, bytes, count, points);
}

std::string encodeChunk(const LazFile& file, std::string_view points) {
  return file.layered() ? encodeLayered(file, points) : encodePointwise(file, points);
}

} // namespace Zamt::Testing::Laz
