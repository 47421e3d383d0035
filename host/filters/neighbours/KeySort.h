#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>

namespace Zamt::Host {

/// Points with a key each, as two arrays of `count` entries that belong together. The arrays come without
/// values, so that the threads that fill them also are the first to touch their memory.
struct KeyedPoints {
  std::size_t count = 0;
  std::unique_ptr<std::uint64_t[]> keys;
  std::unique_ptr<std::uint32_t[]> points;

  explicit KeyedPoints(std::size_t entries)
      : count(entries),
        keys(std::make_unique_for_overwrite<std::uint64_t[]>(entries)),
        points(std::make_unique_for_overwrite<std::uint32_t[]>(entries)) {}
};

/// Sorts by key, ascending; equal keys keep their order. Only the lowest `bits` bits of the keys may be set.
/// Needs as much memory again while it works.
void sortByKey(KeyedPoints& keyed, unsigned bits);

} // namespace Zamt::Host
