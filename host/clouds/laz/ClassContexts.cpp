#include "host/clouds/laz/ClassContexts.h"

#include "host/clouds/laz/PointContext.h"

#include <algorithm>

namespace Zamt::Host {

using namespace Laz;

namespace {

constexpr std::size_t pointsOfWord = 64;
constexpr unsigned single = 3;

std::size_t wordsFor(std::size_t points) { return (points + pointsOfWord - 1) / pointsOfWord; }

/// A word of up to 64 points with what `bit` gives of each.
template <class Bit>
std::uint64_t packed(std::span<const std::uint8_t> contexts, Bit bit) {
  std::uint64_t word = 0;
  for (std::size_t i = 0; i < contexts.size(); ++i) word |= std::uint64_t{bit(contexts[i])} << i;
  return word;
}

/// Takes so many bytes of what is left, if there are as many and any are wanted.
bool takeRoom(std::atomic<std::int64_t>& room, std::size_t bytes) {
  const auto size = static_cast<std::int64_t>(bytes);
  if (size == 0 || room.load(std::memory_order_relaxed) < size) return false;
  room.fetch_sub(size, std::memory_order_relaxed);
  return true;
}

} // namespace

void ClassContexts::keep(std::size_t chunk, std::span<const std::uint8_t> contexts,
                         std::span<const std::byte> classes) {
  const bool isSeveral =
      std::ranges::any_of(contexts, [](std::uint8_t context) { return channelOf(context) != 0; });
  const std::size_t length = wordsFor(contexts.size());
  const std::size_t words = isSeveral ? 3 * length : length;
  Chunk& kept = chunks_[chunk];
  std::uint8_t expected = Unknown;
  if (!kept.state.compare_exchange_strong(expected, BeingKept)) return;
  if (!takeRoom(contextRoom_, words * sizeof(std::uint64_t))) return;
  if (takeRoom(classRoom_, classes.size())) {
    kept.classes = std::make_unique_for_overwrite<std::byte[]>(classes.size());
    std::ranges::copy(classes, kept.classes.get());
  }
  kept.words = std::make_unique<std::uint64_t[]>(words);
  for (std::size_t word = 0; word < length; ++word) {
    const std::size_t first = word * pointsOfWord;
    const auto some = contexts.subspan(first, std::min(pointsOfWord, contexts.size() - first));
    kept.words[word] = packed(some, [](unsigned context) { return placeOf(context) == single ? 1U : 0U; });
    for (unsigned bit = 0; isSeveral && bit < 2; ++bit)
      kept.words[(bit + 1) * length + word] =
          packed(some, [bit](unsigned context) { return channelOf(context) >> bit & 1U; });
  }
  kept.state.store(isSeveral ? SeveralChannels : OneChannel, std::memory_order_release);
}

std::span<const std::byte> ClassContexts::classes(std::size_t chunk, std::size_t points) const {
  if (!has(chunk) || !chunks_[chunk].classes) return {};
  return {chunks_[chunk].classes.get(), points};
}

bool ClassContexts::has(std::size_t chunk) const {
  return chunks_[chunk].state.load(std::memory_order_acquire) > BeingKept;
}

bool ClassContexts::read(std::size_t chunk, std::span<std::uint8_t> contexts) const {
  if (!has(chunk)) return false;
  const Chunk& kept = chunks_[chunk];
  const bool isSeveral = kept.state.load(std::memory_order_relaxed) == SeveralChannels;
  const std::size_t length = wordsFor(contexts.size());
  const auto bitOf = [&](std::size_t plane, std::size_t point) {
    return static_cast<unsigned>(kept.words[plane * length + point / pointsOfWord] >> point % pointsOfWord &
                                 1);
  };
  for (std::size_t i = 0; i < contexts.size(); ++i)
    contexts[i] = static_cast<std::uint8_t>(single * bitOf(0, i));
  for (std::size_t i = 0; isSeveral && i < contexts.size(); ++i)
    contexts[i] = static_cast<std::uint8_t>(contexts[i] | bitOf(1, i) << 6 | bitOf(2, i) << 7);
  return true;
}

} // namespace Zamt::Host
