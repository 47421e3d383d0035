#include "host/clouds/las/extractLas.h"

#include "files/AtomicFile.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <limits>
#include <mutex>
#include <oneapi/tbb/enumerable_thread_specific.h>
#include <oneapi/tbb/parallel_for.h>

namespace Zamt::Host {

namespace {

/// What the header says of points: of all formats, the return number lies in the lowest bits of one byte.
constexpr std::size_t returnAt = 14;
constexpr unsigned returnMask = 0x07;
constexpr unsigned longReturnMask = 0x0F;
constexpr unsigned formatMask = 0x3F;
constexpr unsigned firstLongFormat = 6;
constexpr std::size_t legacyReturns = 5;
constexpr std::size_t returns = 15;

struct Summary {
  std::array<std::uint64_t, returns + 1> byReturn{}; ///< 0 counts what has no number.
  std::array<std::int32_t, 3> low;
  std::array<std::int32_t, 3> high;

  Summary() {
    low.fill(std::numeric_limits<std::int32_t>::max());
    high.fill(std::numeric_limits<std::int32_t>::min());
  }

  void add(const std::byte* record, unsigned mask) {
    ++byReturn[std::to_integer<unsigned>(record[returnAt]) & mask];
    for (std::size_t axis = 0; axis < 3; ++axis) {
      const auto place = readAt<std::int32_t>(record + 4 * axis);
      low[axis] = std::min(low[axis], place);
      high[axis] = std::max(high[axis], place);
    }
  }

  void add(const Summary& other) {
    for (std::size_t i = 0; i < byReturn.size(); ++i) byReturn[i] += other.byReturn[i];
    for (std::size_t axis = 0; axis < 3; ++axis) {
      low[axis] = std::min(low[axis], other.low[axis]);
      high[axis] = std::max(high[axis], other.high[axis]);
    }
  }
};

/// One extraction into one file.
class Extraction {
public:
  Extraction(const LasFile& input, const BlockTable& blocks, const PointMask& kept)
      : input_(input),
        blocks_(blocks),
        kept_(kept),
        points_(kept.count()),
        end_(input.layout.pointOffset +
             static_cast<std::size_t>(input.layout.points) * input.layout.recordLength),
        removed_((input.layout.points - points_) * input.layout.recordLength) {}

  bool write(const std::string& path, const Stop& stop, std::string& error) {
    if (!recordsClearPoints(bytes(), input_.layout, input_.path, error)) return false;
    header_.assign(bytes().begin(), bytes().begin() + static_cast<std::ptrdiff_t>(input_.layout.pointOffset));
    movePlaces();
    const auto file = AtomicFile::create(path, error, &stop);
    if (!file || !file->reserve(bytes().size() - removed_, error) || !writePoints(*file, error)) return false;
    describePoints();
    return file->write(0, header_, error) && file->write(end_ - removed_, bytes().subspan(end_), error) &&
           file->commit(error);
  }

private:
  std::span<const std::byte> bytes() const { return input_.bytes(); }

  /// As the header has them: what is told of the points may be another format, that they stand in for.
  unsigned versionMinor() const { return std::to_integer<unsigned>(header_[HeaderAt::versionMinor]); }
  bool hasLongPoints() const {
    return (std::to_integer<unsigned>(header_[HeaderAt::pointFormat]) & formatMask) >= firstLongFormat;
  }

  /// Moves what the header says of places behind the points.
  void movePlaces() {
    const LasLayout& layout = input_.layout;
    const auto move = [&](std::size_t place) {
      const auto start = readAt<std::uint64_t>(header_.data() + place);
      if (start >= end_) writeAt(header_.data() + place, start - removed_);
    };
    if (versionMinor() >= 3 && layout.headerSize >= HeaderAt::evlrStart) move(HeaderAt::waveformStart);
    if (versionMinor() >= 4 && layout.headerSize >= headerOf14) move(HeaderAt::evlrStart);
  }

  bool writePoints(AtomicFile& file, std::string& error) {
    std::vector<std::uint64_t> before(blocks_.size() + 1); // kept points in front of each block
    for (std::size_t block = 0; block < blocks_.size(); ++block)
      before[block + 1] = before[block] + kept_.count(blocks_.first(block), blocks_.count(block));
    std::atomic<bool> failed{false};
    std::mutex gathering;
    tbb::enumerable_thread_specific<std::vector<std::byte>> buffers;
    tbb::parallel_for(std::size_t{0}, blocks_.size(), [&](std::size_t block) {
      if (failed || before[block] == before[block + 1]) return;
      std::vector<std::byte>& buffer = buffers.local();
      const Summary part = gather(block, buffer);
      std::string problem;
      const bool good =
          file.write(input_.layout.pointOffset + before[block] * input_.layout.recordLength, buffer, problem);
      const std::lock_guard lock(gathering);
      summary_.add(part);
      if (!good && !failed.exchange(true)) error = problem;
    });
    return !failed;
  }

  /// The records of a block that are kept, in `buffer`.
  Summary gather(std::size_t block, std::vector<std::byte>& buffer) const {
    const LasLayout& layout = input_.layout;
    const unsigned mask = hasLongPoints() ? longReturnMask : returnMask;
    std::vector<std::uint32_t> indices;
    kept_.list(blocks_.first(block), blocks_.count(block), indices);
    buffer.resize(indices.size() * layout.recordLength);
    Summary summary;
    std::byte* to = buffer.data();
    const std::byte* const records =
        input_.bytes().data() + layout.pointOffset + blocks_.first(block) * layout.recordLength;
    for (const std::uint32_t index : indices) {
      const std::byte* const record = records + std::size_t{index} * layout.recordLength;
      std::memcpy(to, record, layout.recordLength);
      summary.add(record, mask);
      to += layout.recordLength;
    }
    return summary;
  }

  void describePoints() {
    const LasLayout& layout = input_.layout;
    std::byte* const header = header_.data();
    const bool isLegacy = !hasLongPoints() && points_ <= std::numeric_limits<std::uint32_t>::max();
    writeAt(header + HeaderAt::legacyCount, static_cast<std::uint32_t>(isLegacy ? points_ : 0));
    for (std::size_t i = 0; i < legacyReturns; ++i)
      writeAt(header + HeaderAt::legacyByReturn + 4 * i,
              static_cast<std::uint32_t>(isLegacy ? summary_.byReturn[i + 1] : 0));
    if (versionMinor() >= 4 && layout.headerSize >= headerOf14) {
      writeAt(header + HeaderAt::count, points_);
      for (std::size_t i = 0; i < returns; ++i)
        writeAt(header + HeaderAt::byReturn + 8 * i, summary_.byReturn[i + 1]);
    }
    for (std::size_t axis = 0; axis < 3; ++axis) describeAxis(axis);
  }

  void describeAxis(std::size_t axis) {
    std::byte* const header = header_.data();
    const auto scale = readAt<double>(header + HeaderAt::scale + 8 * axis);
    const auto origin = readAt<double>(header + HeaderAt::origin + 8 * axis);
    const auto valueOf = [&](std::int32_t place) { return points_ == 0 ? 0.0 : place * scale + origin; };
    writeAt(header + HeaderAt::ranges + 16 * axis, valueOf(summary_.high[axis]));
    writeAt(header + HeaderAt::ranges + 16 * axis + 8, valueOf(summary_.low[axis]));
  }

  const LasFile& input_;
  const BlockTable& blocks_;
  const PointMask& kept_;
  const std::uint64_t points_;    ///< Of the new file.
  const std::size_t end_;         ///< Of the points of the input.
  const std::size_t removed_;     ///< Bytes.
  std::vector<std::byte> header_; ///< All in front of the points.
  Summary summary_;
};

} // namespace

bool extractLas(const LasFile& input, const BlockTable& blocks, const PointMask& kept,
                const std::string& path, const Stop& stop, std::string& error) {
  return Extraction(input, blocks, kept).write(path, stop, error);
}

} // namespace Zamt::Host
