#pragma once

#include "host/clouds/laz/LazFormat.h"
#include "host/clouds/laz/bytes.h"

#include <algorithm>
#include <cmath>
#include <cstdint>

// A made-up airborne scan in the order of the scanner, about six bytes a point when coded.
namespace Zamt::Host::Bench {

/// Noise that depends on nothing but the calls before.
class Noise {
public:
  std::uint32_t bits() {
    state = state * 6364136223846793005U + 1442695040888963407U;
    return static_cast<std::uint32_t>(state >> 33);
  }
  /// Below `limit`.
  std::uint32_t below(std::uint32_t limit) {
    return static_cast<std::uint32_t>(std::uint64_t{bits()} * limit >> 31);
  }
  /// About as the normal distribution, of that deviation.
  double normal(double deviation) {
    double sum = 0;
    for (int i = 0; i < 4; ++i) sum += static_cast<double>(bits()) * 0x1p-31 - 0.5;
    return sum * deviation * 1.7;
  }

private:
  std::uint64_t state = 7;
};

/// A scanner that sweeps to and fro over terrain with woods and houses. Lengths in millimetres.
class Scan {
public:
  explicit Scan(const LazFormat& format_) : format(format_) {}

  void next(std::byte* record) {
    if (returnsLeft == 0) nextPulse();
    const unsigned number = returns - returnsLeft + 1;
    --returnsLeft;
    const double x = across + noise.normal(110);
    const double y = along + noise.normal(110);
    const double z = ground(x, y) + height(number) + noise.normal(20);
    Laz::store(record, static_cast<std::int32_t>(x));
    Laz::store(record + 4, static_cast<std::int32_t>(y));
    Laz::store(record + 8, static_cast<std::int32_t>(z));
    const double bright = (wood ? 400 : 900) / number + noise.normal(40);
    Laz::store(record + 12, static_cast<std::uint16_t>(std::max(1.0, bright)));
    const unsigned last = number == returns ? 1 : 0;
    const unsigned aClass = wood ? (last && noise.below(4) == 0 ? 2 : 5 - last) : house ? 6 : 2;
    const unsigned user = noise.below(8) == 0 ? noise.below(16) : 3;
    const bool edge = std::abs(across) > halfSwath - spacing;
    if (format.isLayered()) {
      Laz::store(record + 14, static_cast<std::uint8_t>(number | returns << 4));
      Laz::store(record + 15, static_cast<std::uint8_t>((forward ? 0x40 : 0) | (edge ? 0x80 : 0)));
      Laz::store(record + 16, static_cast<std::uint8_t>(aClass));
      Laz::store(record + 17, static_cast<std::uint8_t>(user));
      Laz::store(record + 18, static_cast<std::int16_t>(across / halfSwath * 3300));
      Laz::store(record + 20, std::uint16_t{17});
      Laz::store(record + 22, time);
    } else {
      Laz::store(record + 14,
                 static_cast<std::uint8_t>(number | returns << 3 | (forward ? 0x40 : 0) | (edge ? 0x80 : 0)));
      Laz::store(record + 15, static_cast<std::uint8_t>(aClass));
      Laz::store(record + 16, static_cast<std::int8_t>(across / halfSwath * 20));
      Laz::store(record + 17, static_cast<std::uint8_t>(user));
      Laz::store(record + 18, std::uint16_t{17});
      Laz::store(record + 20, time);
    }
  }

private:
  static constexpr double halfSwath = 250'000;
  static constexpr double spacing = 500;

  void nextPulse() {
    across += forward ? spacing : -spacing;
    if (std::abs(across) > halfSwath) {
      forward = !forward;
      along += spacing;
    }
    time += 2.5e-6;
    wood = std::sin(across / 31'000) + std::sin(along / 23'000) > 0.7;
    house = !wood && std::sin(across / 7'000) * std::sin(along / 9'000) > 0.75;
    returns = wood ? 1 + noise.below(4) : 1;
    returnsLeft = returns;
  }

  static double ground(double x, double y) {
    return 300'000 + 9'000 * std::sin(x / 40'000) + 12'000 * std::sin(y / 70'000) + 300 * std::sin(x / 3'000);
  }

  double height(unsigned number) {
    if (house) return 6'000;
    return wood && number < returns ? 15'000.0 / number + noise.normal(1'500) : 0;
  }

  const LazFormat& format;
  Noise noise;
  double across = -halfSwath;
  double along = 0;
  double time = 2.1e8;
  bool forward = true;
  bool wood = false;
  bool house = false;
  unsigned returns = 1;
  unsigned returnsLeft = 0;
};

} // namespace Zamt::Host::Bench
