#pragma once

#include <algorithm>
#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>
#include <utility>

// The range coder of LAZ with its models, in both directions. An Encoder and a Decoder have the same calls:
// the one writes the value it is given, the other gives back the value it read. So every field is described
// once, and how it is written cannot drift from how it is read.

namespace Zamt::Testing::Laz {

static_assert(std::endian::native == std::endian::little, "The judge moves the file's numbers as they are.");

/// A number that stands in the bytes of a file.
template <class T>
T numberAt(const void* bytes, std::size_t at = 0) {
  T value;
  std::memcpy(&value, static_cast<const char*>(bytes) + at, sizeof(T));
  return value;
}

template <class T>
void putNumber(void* bytes, std::size_t at, T value) {
  std::memcpy(static_cast<char*>(bytes) + at, &value, sizeof(T));
}

/// Learns how probable a clear bit is.
struct BitModel {
  std::uint32_t zeros = 1, total = 2, p0 = 4096, cycle = 4, left = 4;

  void learn(unsigned bit) {
    if (bit == 0) ++zeros;
    if (--left > 0) return;
    total += cycle;
    if (total > 8192) {
      total = (total + 1) >> 1;
      zeros = (zeros + 1) >> 1;
      if (zeros == total) ++total;
    }
    p0 = (zeros * (0x80000000U / total)) >> 18;
    cycle = std::min((5 * cycle) >> 2, 64U);
    left = cycle;
  }
};

/// Learns how probable each of up to N symbols is. Sets itself up at its first use, since most models of a
/// chunk are never used; all zero is "not used yet".
template <unsigned N>
struct SymbolModel {
  static constexpr unsigned sliceBits = N > 64 ? 8 : 10;
  std::array<std::uint16_t, N> cumulated{}, counts{};
  std::array<std::uint16_t, (32768 >> sliceBits) + 1> starts{}; ///< the first symbol that each slice may hold
  std::uint32_t total = 0, cycle = 0, left = 0;

  /// The symbol whose share holds `place`.
  unsigned find(std::uint32_t place, unsigned symbols) const {
    unsigned found = starts[place >> sliceBits];
    while (found + 1 < symbols && cumulated[found + 1] <= place) ++found;
    return found;
  }

  void startOnce(unsigned symbols) {
    if (total != 0) return;
    std::fill_n(counts.begin(), symbols, std::uint16_t{1});
    total = symbols;
    cumulate(symbols);
    cycle = left = (symbols + 6) >> 1;
  }

  void learn(unsigned symbol, unsigned symbols) {
    ++counts[symbol];
    if (--left == 0) renew(symbols);
  }

private:
  void renew(unsigned symbols) {
    total += cycle;
    if (total > 32768) {
      total = 0;
      for (unsigned s = 0; s < symbols; ++s) {
        counts[s] = static_cast<std::uint16_t>((counts[s] + 1U) >> 1);
        total += counts[s];
      }
    }
    cumulate(symbols);
    cycle = std::min((5 * cycle) >> 2, 8 * (symbols + 6));
    left = cycle;
  }

  void cumulate(unsigned symbols) {
    const std::uint32_t share = 0x80000000U / total;
    std::uint32_t sum = 0;
    unsigned slice = 0;
    for (unsigned s = 0; s < symbols; ++s) {
      cumulated[s] = static_cast<std::uint16_t>((share * sum) >> 16);
      for (; slice << sliceBits < cumulated[s]; ++slice) starts[slice] = static_cast<std::uint16_t>(s - 1);
      sum += counts[s];
    }
    for (; slice < starts.size(); ++slice) starts[slice] = static_cast<std::uint16_t>(symbols - 1);
  }
};

/// Reads one stream. Behind the end it reads zeros and remembers that, so broken streams need no checks
/// elsewhere.
class Decoder {
public:
  static constexpr bool encodes = false;

  Decoder(const std::uint8_t* begin, const std::uint8_t* end) : at(begin), stop(end) {
    for (int i = 0; i < 4; ++i) value = value << 8 | next();
  }

  unsigned bit(BitModel& model, unsigned /*value*/) {
    const std::uint32_t border = model.p0 * (length >> 13);
    const unsigned read = value >= border ? 1 : 0;
    value -= read != 0 ? border : 0;
    length = read != 0 ? length - border : border;
    renormalise();
    model.learn(read);
    return read;
  }

  template <unsigned N>
  unsigned symbol(SymbolModel<N>& model, unsigned /*value*/, unsigned symbols = N) {
    model.startOnce(symbols);
    if (value >= length) broken = true;
    const std::uint32_t step = length >> 15;
    const std::uint32_t place = std::min(value / step, 32768U);
    const unsigned found = model.find(place, symbols);
    const std::uint32_t low = model.cumulated[found] * step;
    value -= low;
    length = (found + 1 < symbols ? model.cumulated[found + 1] * step : length) - low;
    renormalise();
    model.learn(found, symbols);
    return found;
  }

  std::uint32_t raw(unsigned bits, std::uint32_t /*value*/) {
    if (bits > 19) {
      const std::uint32_t low = raw(16, 0);
      return raw(bits - 16, 0) << 16 | low;
    }
    length >>= bits;
    std::uint32_t read = value / length;
    value -= read * length;
    if (read >> bits != 0) {
      broken = true;
      read &= (1U << bits) - 1;
    }
    renormalise();
    return read;
  }

  /// Whether something was read that no encoder writes.
  bool broken = false;

  /// The first byte that was not read.
  const std::uint8_t* position() const { return at; }

  /// Whether the stream was sound and ended here. Layers may be longer than their streams, if zeros fill
  /// them.
  bool endsHere() const {
    return !broken && std::all_of(at, stop, [](std::uint8_t byte) { return byte == 0; });
  }

private:
  std::uint8_t next() {
    if (at < stop) return *at++;
    broken = true;
    return 0;
  }

  void renormalise() {
    for (; length < 0x01000000; length <<= 8) value = value << 8 | next();
  }

  const std::uint8_t* at;
  const std::uint8_t* stop;
  std::uint32_t value = 0, length = 0xFFFFFFFF;
};

/// Writes one stream.
class Encoder {
public:
  static constexpr bool encodes = true;
  static constexpr bool broken = false;

  unsigned bit(BitModel& model, unsigned value) {
    const std::uint32_t border = model.p0 * (length >> 13);
    if (value != 0) {
      add(border);
      length -= border;
    } else {
      length = border;
    }
    renormalise();
    model.learn(value);
    return value;
  }

  template <unsigned N>
  unsigned symbol(SymbolModel<N>& model, unsigned value, unsigned symbols = N) {
    model.startOnce(symbols);
    const std::uint32_t step = length >> 15;
    const std::uint32_t low = model.cumulated[value] * step;
    length = (value + 1 < symbols ? model.cumulated[value + 1] * step : length) - low;
    add(low);
    renormalise();
    model.learn(value, symbols);
    return value;
  }

  std::uint32_t raw(unsigned bits, std::uint32_t value) {
    if (bits > 19) {
      raw(16, value & 0xFFFF);
      raw(bits - 16, value >> 16);
      return value;
    }
    length >>= bits;
    add(value * length);
    renormalise();
    return value;
  }

  /// Ends the stream and hands it over.
  std::string finish() {
    const bool wide = length > 0x02000000;
    add(wide ? 0x01000000 : 0x00800000);
    length = wide ? 0x00800000 : 0x00008000;
    renormalise();
    out.append(wide ? 3 : 2, '\0');
    return std::move(out);
  }

private:
  void add(std::uint32_t amount) {
    base += amount;
    if (base >= amount) return;
    auto last = out.rbegin();
    while (*last == '\xFF') *last++ = '\0';
    ++*last;
  }

  void renormalise() {
    for (; length < 0x01000000; length <<= 8) {
      out.push_back(static_cast<char>(base >> 24));
      base <<= 8;
    }
  }

  std::uint32_t base = 0, length = 0xFFFFFFFF;
  std::string out;
};

} // namespace Zamt::Testing::Laz
