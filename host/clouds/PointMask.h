#pragma once

#include <cstdint>
#include <span>
#include <vector>

namespace Zamt::Host {

/// One bit a point, in the order of the points.
class PointMask {
public:
  PointMask() = default;

  /// A mask of `points` bits, all clear or all set.
  explicit PointMask(std::uint64_t points, bool set = false);

  std::uint64_t size() const { return bits_; }
  bool test(std::uint64_t point) const { return ((words_[point / 64] >> (point % 64)) & 1) != 0; }
  void set(std::uint64_t point) { words_[point / 64] |= std::uint64_t{1} << (point % 64); }
  void clear(std::uint64_t point) { words_[point / 64] &= ~(std::uint64_t{1} << (point % 64)); }

  /// How many bits are set, of all and of the `points` from `first` on.
  std::uint64_t count() const { return count(0, bits_); }
  std::uint64_t count(std::uint64_t first, std::uint64_t points) const;

  /// Appends to `indices` the set ones of the `points` from `first` on, as distances from `first`, ascending.
  void list(std::uint64_t first, std::uint64_t points, std::vector<std::uint32_t>& indices) const;

  /// Sets the points `first + indices[i]`, which ascend. Several threads may do that at once, wherever the
  /// points of one end and those of the next begin.
  void add(std::uint64_t first, std::span<const std::uint32_t> indices);

  /// The words, least significant bit first; the bits behind the last point are clear.
  std::vector<std::uint64_t>& raw() { return words_; }
  const std::vector<std::uint64_t>& raw() const { return words_; }

  bool operator==(const PointMask&) const = default;

private:
  /// Calls `visit(word, first bit of it)` for each word of a stretch, the bits outside of it cleared.
  template <class Visit>
  void visitWords(std::uint64_t first, std::uint64_t points, Visit visit) const;

  std::uint64_t bits_ = 0;
  std::vector<std::uint64_t> words_;
};

} // namespace Zamt::Host
