#include "host/clouds/PointMask.h"

#include <atomic>
#include <bit>

namespace Zamt::Host {

PointMask::PointMask(std::uint64_t points, bool set)
    : bits_(points), words_((points + 63) / 64, set ? ~std::uint64_t{0} : 0) {
  if (set && points % 64 != 0) words_.back() = (std::uint64_t{1} << (points % 64)) - 1;
}

template <class Visit>
void PointMask::visitWords(std::uint64_t first, std::uint64_t points, Visit visit) const {
  if (points == 0) return;
  const std::uint64_t last = first + points - 1;
  for (std::uint64_t w = first / 64; w <= last / 64; ++w) {
    std::uint64_t word = words_[w];
    if (w == first / 64) word &= ~std::uint64_t{0} << (first % 64);
    if (w == last / 64) word &= ~std::uint64_t{0} >> (63 - last % 64);
    visit(word, w * 64);
  }
}

std::uint64_t PointMask::count(std::uint64_t first, std::uint64_t points) const {
  std::uint64_t total = 0;
  visitWords(first, points, [&](std::uint64_t word, std::uint64_t) {
    total += static_cast<std::uint64_t>(std::popcount(word));
  });
  return total;
}

void PointMask::list(std::uint64_t first, std::uint64_t points, std::vector<std::uint32_t>& indices) const {
  visitWords(first, points, [&](std::uint64_t word, std::uint64_t start) {
    // Wraps where the first word begins before the stretch; the sum with a bit of the stretch does not.
    const auto base = static_cast<std::uint32_t>(start - first);
    for (std::uint64_t rest = word; rest != 0; rest &= rest - 1)
      indices.push_back(base + static_cast<std::uint32_t>(std::countr_zero(rest)));
  });
}

void PointMask::add(std::uint64_t first, std::span<const std::uint32_t> indices) {
  for (std::size_t i = 0; i < indices.size();) {
    const std::uint64_t at = (first + indices[i]) / 64;
    std::uint64_t word = 0;
    for (; i < indices.size() && (first + indices[i]) / 64 == at; ++i)
      word |= std::uint64_t{1} << ((first + indices[i]) % 64);
    // Only the first and the last word can be another thread's as well, but one operation a word costs
    // nothing.
    std::atomic_ref(words_[at]).fetch_or(word, std::memory_order_relaxed);
  }
}

} // namespace Zamt::Host
