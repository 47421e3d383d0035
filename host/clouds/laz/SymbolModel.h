#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>

namespace Zamt::Host::Laz {

/// How often one bit was 0, in the manner in which both sides of a stream learn it.
struct BitModel {
  std::uint32_t zeros = 1;
  std::uint32_t total = 2;
  std::uint32_t zeroShare = 4096; ///< Of 8192; between 1 and 8191.
  std::uint32_t cycle = 4;
  std::uint32_t left = 4;

  void learn(bool bit) {
    zeros += bit ? 0 : 1;
    if (--left == 0) adapt();
  }

private:
  void adapt() {
    total += cycle;
    if (total > 8192) {
      total = (total + 1) >> 1;
      zeros = (zeros + 1) >> 1;
      if (zeros == total) ++total;
    }
    zeroShare = (zeros * (0x80000000U / total)) >> 18;
    cycle = std::min((5 * cycle) >> 2, 64U);
    left = cycle;
  }
};

/// The cells by which a decoder finds a symbol: for each of 2^bits equal parts of the range, the symbol that
/// its start belongs to. Twice as fast as halving the range of symbols, which guesses a branch at each step.
template <unsigned Capacity>
struct SymbolCells {
  using Cell = std::conditional_t<(Capacity > 256), std::uint16_t, std::uint8_t>;
  static constexpr unsigned bits = Capacity <= 16 ? 6 : Capacity <= 128 ? 7 : 9;
  static constexpr unsigned shift = 15 - bits;
  /// One cell more than the parts, since the share of a value can exceed the whole by up to 63.
  std::array<Cell, (1U << bits) + 1> symbolAt;
};

struct NoSymbolCells {};

/// How often each of up to `Capacity` symbols occurred. Starts by itself when it is first used, so that a
/// chunk of few points does not pay for the many models that it never touches; `reset` makes it unused.
/// A stream is only encoded with models without cells and only decoded with models that have them.
template <unsigned Capacity, bool HasCells>
struct SymbolModel {
  static constexpr std::uint32_t whole = 1U << 15;
  static constexpr std::uint16_t never = 0xFFFF; ///< Above the share of any value.

  std::uint32_t last = 0; ///< The greatest symbol; 0 while the model is unused.
  std::uint32_t total;
  std::uint32_t cycle;
  std::uint32_t left;
  std::array<std::uint16_t, Capacity + 1> starts; ///< Of the shares of `whole`, ascending; then `never`.
  std::array<std::uint16_t, Capacity> counts;
  [[no_unique_address]] std::conditional_t<HasCells, SymbolCells<Capacity>, NoSymbolCells> cells;

  void reset() { last = 0; }

  /// Makes it usable; `symbols` is at least 2.
  void prepare(unsigned symbols = Capacity) {
    if (last == 0) [[unlikely]]
      start(symbols);
  }

  void learn(unsigned symbol) {
    ++counts[symbol];
    if (--left == 0) [[unlikely]]
      adapt();
  }

private:
  [[gnu::noinline]] void start(unsigned symbols) {
    last = symbols - 1;
    total = symbols;
    std::fill_n(counts.begin(), symbols, std::uint16_t{1});
    build();
    cycle = left = (symbols + 6) >> 1;
  }

  [[gnu::noinline]] void adapt() {
    total += cycle;
    if (total > whole) halve();
    build();
    cycle = std::min((5 * cycle) >> 2, 8 * (last + 7));
    left = cycle;
  }

  void halve() {
    total = 0;
    for (unsigned s = 0; s <= last; ++s) {
      counts[s] = static_cast<std::uint16_t>((counts[s] + 1U) >> 1);
      total += counts[s];
    }
  }

  void build() {
    const std::uint32_t scale = 0x80000000U / total;
    std::uint32_t sum = 0;
    for (unsigned s = 0; s <= last; ++s) {
      starts[s] = static_cast<std::uint16_t>((scale * sum) >> 16);
      sum += counts[s];
    }
    starts[last + 1] = never;
    if constexpr (HasCells) fillCells();
  }

  void fillCells() {
    constexpr unsigned shift = SymbolCells<Capacity>::shift;
    constexpr unsigned width = 1U << shift;
    auto& symbolAt = cells.symbolAt;
    symbolAt.fill(0);
    for (unsigned s = 1; s <= last; ++s)
      symbolAt[(starts[s] + width - 1) >> shift] = static_cast<typename SymbolCells<Capacity>::Cell>(s);
    for (unsigned cell = 1; cell < symbolAt.size(); ++cell)
      symbolAt[cell] = std::max(symbolAt[cell], symbolAt[cell - 1]);
  }
};

} // namespace Zamt::Host::Laz
