#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>

namespace Zamt::Host::Laz {

static_assert(std::endian::native == std::endian::little, "LAZ is little endian and is read in place");

/// The number that lies at `at`, aligned or not.
template <class T>
T load(const std::byte* at) {
  T value;
  std::memcpy(&value, at, sizeof(T));
  return value;
}

/// Puts a number where it need not be aligned.
template <class T>
void store(std::byte* at, T value) {
  std::memcpy(at, &value, sizeof(T));
}

/// 1 if a number is below 2^Bits, otherwise 0. By arithmetic, since a compiler makes a branch of a comparison
/// that can't be guessed here.
template <unsigned Bits>
std::uint32_t isBelow(std::uint32_t number) {
  return static_cast<std::uint32_t>((std::uint64_t{number} - (1U << Bits)) >> 63);
}

/// Four bytes as a number, the most significant first.
inline std::uint32_t loadBigEndian(const std::byte* at) { return __builtin_bswap32(load<std::uint32_t>(at)); }

inline void storeBigEndian(std::byte* at, std::uint32_t value) { store(at, __builtin_bswap32(value)); }

} // namespace Zamt::Host::Laz
