#include "host/clouds/las/PointSummary.h"

#include "host/clouds/las/LasCompatibility.h"

#include <algorithm>

namespace Zamt::Host {

namespace {

/// Of all formats, the return number lies in the lowest bits of one byte.
constexpr std::size_t returnAt = 14;
constexpr unsigned returnMask = 0x07;
constexpr unsigned longReturnMask = 0x0F;
constexpr std::size_t longTimeAt = 22;
constexpr std::size_t legacyReturns = 5;

/// Bytes from the start of the data of a compatible file's record to the number of its points; those by
/// return follow.
constexpr std::size_t compatibleCountAt = 28;
constexpr std::size_t compatibleRecordSize = 156;

std::uint32_t legacy(std::uint64_t count, bool isLegacy) {
  return static_cast<std::uint32_t>(isLegacy ? count : 0);
}

} // namespace

PointSummary::PointSummary(const LasLayout& layout) : layout_(&layout) {
  low_.fill(std::numeric_limits<std::int32_t>::max());
  high_.fill(std::numeric_limits<std::int32_t>::min());
}

void PointSummary::add(std::span<const std::byte> records) {
  const bool isLong = layout_->pointFormat >= 6;
  const unsigned mask = isLong ? longReturnMask : returnMask;
  points_ += records.size() / layout_->recordLength;
  for (std::size_t at = 0; at < records.size(); at += layout_->recordLength) {
    const std::byte* const record = &records[at];
    const unsigned number = std::to_integer<unsigned>(record[returnAt]) & mask;
    ++byReturn_[number];
    if (layout_->moreReturnsAt)
      ++compatible_[number + (std::to_integer<unsigned>(record[*layout_->moreReturnsAt]) >> 4)];
    for (std::size_t axis = 0; axis < 3; ++axis) {
      const auto place = readAt<std::int32_t>(record + 4 * axis);
      low_[axis] = std::min(low_[axis], place);
      high_[axis] = std::max(high_[axis], place);
    }
    if (!isLong) continue;
    const auto time = readAt<double>(record + longTimeAt); // what is no number is neither
    if (time < earliest_) earliest_ = time;
    if (time > latest_) latest_ = time;
  }
}

void PointSummary::add(const PointSummary& other) {
  points_ += other.points_;
  for (std::size_t i = 0; i < byReturn_.size(); ++i) byReturn_[i] += other.byReturn_[i];
  for (std::size_t i = 0; i < compatible_.size(); ++i) compatible_[i] += other.compatible_[i];
  for (std::size_t axis = 0; axis < 3; ++axis) {
    low_[axis] = std::min(low_[axis], other.low_[axis]);
    high_[axis] = std::max(high_[axis], other.high_[axis]);
  }
  earliest_ = std::min(earliest_, other.earliest_);
  latest_ = std::max(latest_, other.latest_);
}

std::array<double, 2> PointSummary::times() const {
  if (earliest_ > latest_) return {0, 0};
  return {earliest_, latest_};
}

void PointSummary::describe(std::span<const std::byte> input, LasEdits& edits) const {
  describeCounts(edits);
  describeCompatible(edits);
  for (std::size_t axis = 0; axis < 3; ++axis) {
    const auto scale = readAt<double>(&input[HeaderAt::scale + 8 * axis]);
    const auto origin = readAt<double>(&input[HeaderAt::origin + 8 * axis]);
    const auto valueOf = [&](std::int32_t place) { return points_ == 0 ? 0.0 : place * scale + origin; };
    replaceNumber(edits, HeaderAt::ranges + 16 * axis, std::array{valueOf(high_[axis]), valueOf(low_[axis])});
  }
}

void PointSummary::describeCounts(LasEdits& edits) const {
  const bool isLegacy = layout_->pointFormat < 6 && points_ <= std::numeric_limits<std::uint32_t>::max();
  std::array<std::uint32_t, 1 + legacyReturns> old{legacy(points_, isLegacy)};
  for (std::size_t i = 1; i < old.size(); ++i) old[i] = legacy(byReturn_[i], isLegacy);
  replaceNumber(edits, HeaderAt::legacyCount, old);
  if (layout_->versionMinor < 4 || layout_->headerSize < headerOf14) return;
  auto counts = byReturn_;
  counts[0] = points_;
  replaceNumber(edits, HeaderAt::count, counts);
}

void PointSummary::describeCompatible(LasEdits& edits) const {
  const LasRecord* const record = layout_->findRecord(compatibleUserId, compatibleRecordId);
  if (!layout_->moreReturnsAt || !record || record->length < compatibleRecordSize) return;
  std::array<std::uint64_t, 1 + returns> counts{points_};
  std::copy_n(compatible_.begin() + 1, returns, counts.begin() + 1);
  replaceNumber(edits, record->data + compatibleCountAt, counts);
}

} // namespace Zamt::Host
