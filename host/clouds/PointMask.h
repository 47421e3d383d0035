#pragma once

#include <algorithm>
#include <bit>
#include <cstdint>
#include <vector>

namespace Zamt::Host {

/// Points are worked on in blocks of this many, so that a block's columns stay in the processor's cache.
/// A multiple of 64, so that blocks never share a word of a mask and may be written in parallel.
inline constexpr std::uint32_t blockPoints = 32768;

/// One bit a point, in file order. Different blocks may be written by different threads.
class PointMask {
public:
  PointMask() = default;

  /// A mask of `points` bits, all clear or all set.
  explicit PointMask(std::uint64_t points, bool set = false)
      : bits(points), words((points + 63) / 64, set ? ~std::uint64_t{0} : 0) {
    if (set && points % 64 != 0) words.back() = (std::uint64_t{1} << (points % 64)) - 1;
  }

  std::uint64_t size() const { return bits; }
  bool test(std::uint64_t point) const { return (words[point / 64] >> (point % 64)) & 1; }
  void set(std::uint64_t point) { words[point / 64] |= std::uint64_t{1} << (point % 64); }
  void clear(std::uint64_t point) { words[point / 64] &= ~(std::uint64_t{1} << (point % 64)); }

  /// How many bits are set.
  std::uint64_t count() const {
    std::uint64_t total = 0;
    for (const std::uint64_t word : words) total += static_cast<std::uint64_t>(std::popcount(word));
    return total;
  }

  /// Appends to `indices` the set points of the block that starts at `first`, relative to `first`. `first` is
  /// a multiple of `blockPoints`.
  void listBlock(std::uint64_t first, std::vector<std::uint32_t>& indices) const {
    const std::uint64_t firstWord = first / 64;
    const std::uint64_t endWord = std::min<std::uint64_t>(firstWord + blockPoints / 64, words.size());
    for (std::uint64_t w = firstWord; w < endWord; ++w)
      for (std::uint64_t rest = words[w]; rest != 0; rest &= rest - 1)
        indices.push_back(static_cast<std::uint32_t>((w - firstWord) * 64) +
                          static_cast<std::uint32_t>(std::countr_zero(rest)));
  }

  /// The words, least significant bit first; the bits behind the last point are clear.
  std::vector<std::uint64_t>& raw() { return words; }
  const std::vector<std::uint64_t>& raw() const { return words; }

  bool operator==(const PointMask&) const = default;

private:
  std::uint64_t bits = 0;
  std::vector<std::uint64_t> words;
};

} // namespace Zamt::Host
