#include "host/clouds/BlockReader.h"

#include <algorithm>
#include <array>
#include <limits>

namespace Zamt::Host {

namespace {

constexpr std::size_t mostComponents = 3;

/// What is read of a block that can't be.
constexpr double unreadable = std::numeric_limits<double>::quiet_NaN();

/// Values are looked through in pieces of this many, which stay in the first-level cache.
constexpr std::size_t pieceSize = 1024;

/// Widens a range to hold some values; those that are no numbers are passed over. Several ranges side by side
/// spare each comparison the wait for the one before.
void widen(double& low, double& high, std::span<const double> values) {
  constexpr std::size_t lanes = 8;
  std::array<double, lanes> lows;
  std::array<double, lanes> highs;
  lows.fill(low);
  highs.fill(high);
  std::size_t at = 0;
  for (; at + lanes <= values.size(); at += lanes)
    for (std::size_t lane = 0; lane < lanes; ++lane) {
      const double value = values[at + lane];
      lows[lane] = value < lows[lane] ? value : lows[lane];
      highs[lane] = value > highs[lane] ? value : highs[lane];
    }
  for (; at < values.size(); ++at) {
    lows[0] = values[at] < lows[0] ? values[at] : lows[0];
    highs[0] = values[at] > highs[0] ? values[at] : highs[0];
  }
  low = *std::ranges::min_element(lows);
  high = *std::ranges::max_element(highs);
}

} // namespace

BlockReader::BlockReader(const PointCloud& cloud, std::span<const ColumnKey> expected)
    : cloud_(cloud), reader_(cloud.format_->makeReader()), kept_(cloud.fields().size() * mostComponents) {
  reader_->expect(expected);
}

void BlockReader::moveTo(std::size_t block) {
  block_ = block;
  ++stay_;
}

Column BlockReader::column(const Field& field, unsigned component) {
  const ColumnKey key = cloud_.keyOf(field, component);
  KeptColumn& kept = kept_[key.field * mostComponents + component];
  if (kept.stay != stay_) kept = {stay_, obtain(key)};
  return {kept.column, field, component};
}

StoredColumn BlockReader::obtain(ColumnKey key) {
  if (key.field == cloud_.about_.classField)
    if (const auto changed = cloud_.classes_.of(block_); !changed.empty())
      return {std::as_bytes(changed).data(), 1, FieldType::U8};
  return obtainStored(key);
}

StoredColumn BlockReader::obtainStored(ColumnKey key) {
  StoredColumn column;
  if (!failed() && reader_->read(block_, key, column, problem_)) return column;
  return {reinterpret_cast<const std::byte*>(&unreadable), 0, FieldType::F64};
}

Column BlockReader::storedClasses() {
  const Field& field = cloud_.classField();
  return {obtainStored(cloud_.keyOf(field)), field, 0};
}

Bounds BlockReader::bounds() {
  if (const Bounds* const known = cloud_.knownBounds(block_)) return *known;
  const Bounds box = measure();
  if (!failed()) cloud_.keepBounds(block_, box);
  return box;
}

Bounds BlockReader::measure() {
  if (size() == 0) return {};
  constexpr double infinity = std::numeric_limits<double>::infinity();
  Bounds box{{infinity, infinity, infinity}, {-infinity, -infinity, -infinity}};
  std::array<double, pieceSize> piece;
  for (std::size_t from = 0; from < size(); from += pieceSize)
    for (std::size_t axis = 0; axis < 3; ++axis) {
      const auto values = std::span(piece).first(std::min(pieceSize, size() - from));
      this->axis(axis).read(from, values);
      widen(box.low[axis], box.high[axis], values);
    }
  return box;
}

} // namespace Zamt::Host
