#include "host/clouds/las/KeptPoints.h"

#include <algorithm>
#include <cstring>
#include <vector>

namespace Zamt::Host {

namespace {

/// Records are read in pieces of at most this many.
constexpr std::size_t pointsAtOnce = 4096;

BlockTable keptBlocks(const BlockTable& all, const PointMask& kept) {
  std::vector<std::uint64_t> starts{0};
  for (std::size_t block = 0; block < all.size(); ++block)
    starts.push_back(starts.back() + kept.count(all.first(block), all.count(block)));
  return BlockTable(std::move(starts));
}

} // namespace

class KeptPoints::Reader : public RecordReader {
public:
  explicit Reader(const KeptPoints& points)
      : points_(points),
        length_(points.file().layout.recordLength),
        all_(points.all_.makeRecordReader()),
        piece_(pointsAtOnce * length_) {}

  bool read(std::size_t block, std::size_t from, std::span<std::byte> records,
            std::string& problem) override {
    if (records.empty()) return true;
    const BlockTable& all = points_.all_.blocks();
    if (block != block_) {
      indices_.clear();
      points_.kept_.list(all.first(block), all.count(block), indices_);
      block_ = block;
    }
    const auto wanted = std::span(indices_).subspan(from, records.size() / length_);
    const std::size_t start = from == 0 ? 0 : std::size_t{indices_[from - 1]} + 1;
    // who reads the last record reads its block to the end, where damage shows
    const bool isLast = from + wanted.size() == indices_.size();
    const std::size_t end = isLast ? all.count(block) : std::size_t{wanted.back()} + 1;
    if (!gather(start, end, wanted, records.data(), problem)) return false;
    PointSummary part(points_.file().layout);
    part.add(records);
    const std::lock_guard lock(points_.gathering_);
    points_.summary_.add(part);
    return true;
  }

private:
  /// Reads a stretch of the block, and puts those with the indices `wanted` to `to`.
  bool gather(std::size_t start, std::size_t end, std::span<const std::uint32_t> wanted, std::byte* to,
              std::string& problem) {
    for (auto next = wanted.begin(); start < end;) {
      const std::size_t count = std::min(end - start, pointsAtOnce);
      if (!all_->read(block_, start, std::span(piece_).first(count * length_), problem)) return false;
      for (; next != wanted.end() && *next < start + count; ++next, to += length_)
        std::memcpy(to, &piece_[(*next - start) * length_], length_);
      start += count;
    }
    return true;
  }

  const KeptPoints& points_;
  const std::size_t length_;
  std::unique_ptr<RecordReader> all_;
  std::vector<std::byte> piece_;
  std::size_t block_ = ~std::size_t{0};
  std::vector<std::uint32_t> indices_; ///< Of the points of the block that are kept.
};

KeptPoints::KeptPoints(const LasSource& all, const PointMask& kept)
    : all_(all), kept_(kept), blocks_(keptBlocks(all.blocks(), kept)), summary_(all.file().layout) {}

std::unique_ptr<RecordReader> KeptPoints::makeRecordReader() const { return std::make_unique<Reader>(*this); }

} // namespace Zamt::Host
