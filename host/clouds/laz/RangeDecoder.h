#pragma once

#include "host/clouds/laz/SymbolModel.h"
#include "host/clouds/laz/bytes.h"

#include <array>
#include <span>

namespace Zamt::Host::Laz {

/// The bytes of one range-coded stream as a decoder walks through them. The decoder looks four bytes ahead
/// and asks only now and then whether there are more; so the end of the stream is walked in a copy that zeros
/// follow, and nothing behind the stream is ever read.
class StreamBytes {
public:
  /// What may be consumed between two questions.
  static constexpr std::size_t stride = 124;

  /// A place in the bytes, and how far to go from it before asking for the next.
  struct Place {
    const std::byte* at = nullptr;
    const std::byte* limit = nullptr;
  };

  Place start(std::span<const std::byte> bytes) {
    whole = bytes;
    inTail = false;
    consumedBeforeTail = 0;
    if (bytes.size() > tailSize) return {bytes.data(), bytes.data() + (bytes.size() - tailSize)};
    return enterTail(0);
  }

  /// Where to go on from `at`, which is beyond the limit. Still beyond it when the bytes have ended. By
  /// value, so that what a decoder keeps in registers need not have an address.
  [[gnu::noinline]] Place moveOn(Place beyond) {
    if (inTail) return beyond;
    return enterTail(static_cast<std::size_t>(beyond.at - whole.data()));
  }

  /// How many bytes lie before `at`.
  std::size_t consumed(const std::byte* at) const {
    return inTail ? consumedBeforeTail + static_cast<std::size_t>(at - tail.data())
                  : static_cast<std::size_t>(at - whole.data());
  }

  std::span<const std::byte> bytes() const { return whole; }

private:
  static constexpr std::size_t tailSize = stride + sizeof(std::uint32_t);

  Place enterTail(std::size_t from) {
    const std::size_t rest = whole.size() - from; // at most `tailSize`
    tail.fill(std::byte{0});
    if (rest > 0) std::memcpy(tail.data(), whole.data() + from, rest);
    inTail = true;
    consumedBeforeTail = from;
    return {tail.data(), tail.data() + rest};
  }

  std::span<const std::byte> whole;
  std::size_t consumedBeforeTail = 0;
  bool inTail = false;
  std::array<std::byte, 2 * tailSize> tail{};
};

/// Decodes one stream. Whatever the bytes are, every call comes back with a symbol that its model has; a
/// stream that no encoder makes is found by `isBroken` and by the number of bytes consumed.
///
/// `value < length` holds between any two calls, which is why no symbol needs a check: every step leaves a
/// remainder of the part that was chosen.
class RangeDecoder {
public:
  static constexpr bool encodes = false;
  template <unsigned Capacity>
  using Model = SymbolModel<Capacity, true>;

  /// `source` must outlive the decoder, and so must the bytes.
  void start(StreamBytes& source, std::span<const std::byte> bytes) {
    stream = &source;
    place = source.start(bytes);
    length = 0xFFFFFFFF;
    value = loadBigEndian(place.at);
    place.at += sizeof(std::uint32_t);
    broken = value == length;
    if (broken) --value;
  }

  /// To be asked at least every `StreamBytes::stride` consumed bytes: false when the stream has ended before
  /// what was decoded from it.
  [[gnu::always_inline]] bool proceed() {
    if (place.at <= place.limit) [[likely]]
      return true;
    place = stream->moveOn(place);
    return place.at <= place.limit;
  }

  /// No encoder makes the stream.
  bool isBroken() const { return broken; }
  void markBroken() { broken = true; }
  std::size_t consumed() const { return stream->consumed(place.at); }

  template <unsigned Capacity>
  [[gnu::always_inline]] unsigned symbol(Model<Capacity>& model, unsigned = 0) {
    model.prepare();
    return preparedSymbol(model);
  }

  /// As `symbol`, of a model that `prepare` was called for.
  template <unsigned Capacity>
  [[gnu::always_inline]] unsigned preparedSymbol(Model<Capacity>& model, unsigned = 0) {
    const std::uint32_t step = length >> 15;
    const std::uint32_t share = value / step;
    unsigned symbol = model.cells.symbolAt[share >> SymbolCells<Capacity>::shift];
    symbol += model.starts[symbol + 1] <= share ? 1 : 0;
    while (model.starts[symbol + 1] <= share) [[unlikely]]++ symbol;
    const std::uint32_t low = model.starts[symbol] * step;
    const std::uint32_t high = symbol == model.last ? length : model.starts[symbol + 1] * step;
    value -= low;
    length = high - low;
    renormalise();
    model.learn(symbol);
    return symbol;
  }

  [[gnu::always_inline]] bool bit(BitModel& model, bool = false) {
    const std::uint32_t zeros = model.zeroShare * (length >> 13);
    const bool one = value >= zeros;
    value -= one ? zeros : 0;
    length = one ? length - zeros : zeros;
    renormalise();
    model.learn(one);
    return one;
  }

  /// `bits` from 1 to 32.
  [[gnu::always_inline]] std::uint32_t raw(unsigned bits, std::uint32_t = 0) {
    if (bits <= 19) return fewRaw(bits);
    const std::uint32_t low = fewRaw(16);
    return fewRaw(bits - 16) << 16 | low;
  }

private:
  [[gnu::always_inline]] std::uint32_t fewRaw(unsigned bits) {
    length >>= bits;
    const std::uint32_t bitsRead = value / length;
    value -= bitsRead * length;
    broken |= bitsRead >> bits != 0;
    renormalise<3>();
    return bitsRead & ((1U << bits) - 1);
  }

  /// Symbols and bits leave at least 2^9 of the length and need up to two bytes, raw bits up to three. No
  /// branch: how many it takes can't be guessed.
  template <unsigned Most = 2>
  [[gnu::always_inline]] void renormalise() {
    unsigned bytes = isBelow<24>(length) + isBelow<16>(length);
    if constexpr (Most == 3) bytes += isBelow<8>(length);
    const unsigned bits = 8 * bytes;
    const std::uint64_t next = loadBigEndian(place.at);
    value = value << bits | static_cast<std::uint32_t>(next >> (32 - bits));
    length <<= bits;
    place.at += bytes;
  }

  std::uint32_t value = 0;
  std::uint32_t length = 0;
  StreamBytes::Place place;
  StreamBytes* stream = nullptr;
  bool broken = false;
};

} // namespace Zamt::Host::Laz
