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
    whole_ = bytes;
    inTail_ = false;
    consumedBeforeTail_ = 0;
    if (bytes.size() > tailSize) return {bytes.data(), bytes.data() + (bytes.size() - tailSize)};
    return enterTail(0);
  }

  /// Where to go on from `at`, which is beyond the limit. Still beyond it when the bytes have ended. By
  /// value, so that what a decoder keeps in registers need not have an address.
  [[gnu::noinline]] Place moveOn(Place beyond) {
    if (inTail_) return beyond;
    return enterTail(static_cast<std::size_t>(beyond.at - whole_.data()));
  }

  /// How many bytes lie before `at`.
  std::size_t consumed(const std::byte* at) const {
    return inTail_ ? consumedBeforeTail_ + static_cast<std::size_t>(at - tail_.data())
                   : static_cast<std::size_t>(at - whole_.data());
  }

  std::span<const std::byte> bytes() const { return whole_; }

private:
  static constexpr std::size_t tailSize = stride + sizeof(std::uint32_t);

  Place enterTail(std::size_t from) {
    const std::size_t rest = whole_.size() - from; // at most `tailSize`
    tail_.fill(std::byte{0});
    if (rest > 0) std::memcpy(tail_.data(), whole_.data() + from, rest);
    inTail_ = true;
    consumedBeforeTail_ = from;
    return {tail_.data(), tail_.data() + rest};
  }

  std::span<const std::byte> whole_;
  std::size_t consumedBeforeTail_ = 0;
  bool inTail_ = false;
  std::array<std::byte, 2 * tailSize> tail_{};
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
    stream_ = &source;
    place_ = source.start(bytes);
    length_ = 0xFFFFFFFF;
    value_ = loadBigEndian(place_.at);
    place_.at += sizeof(std::uint32_t);
    broken_ = value_ == length_;
    if (broken_) --value_;
  }

  /// To be asked at least every `StreamBytes::stride` consumed bytes: false when the stream has ended before
  /// what was decoded from it.
  [[gnu::always_inline]] bool proceed() {
    if (place_.at <= place_.limit) [[likely]]
      return true;
    place_ = stream_->moveOn(place_);
    return place_.at <= place_.limit;
  }

  /// No encoder makes the stream.
  bool isBroken() const { return broken_; }
  void markBroken() { broken_ = true; }
  std::size_t consumed() const { return stream_->consumed(place_.at); }

  template <unsigned Capacity>
  [[gnu::always_inline]] unsigned symbol(Model<Capacity>& model, unsigned = 0) {
    model.prepare();
    return preparedSymbol(model);
  }

  /// As `symbol`, of a model that `prepare` was called for.
  template <unsigned Capacity>
  [[gnu::always_inline]] unsigned preparedSymbol(Model<Capacity>& model, unsigned = 0) {
    const std::uint32_t step = length_ >> 15;
    const std::uint32_t share = value_ / step;
    unsigned symbol = model.cells.symbolAt[share >> SymbolCells<Capacity>::shift];
    symbol += model.starts[symbol + 1] <= share ? 1 : 0;
    while (model.starts[symbol + 1] <= share) [[unlikely]]++ symbol;
    const std::uint32_t low = model.starts[symbol] * step;
    const std::uint32_t high = symbol == model.last ? length_ : model.starts[symbol + 1] * step;
    value_ -= low;
    length_ = high - low;
    renormalise();
    model.learn(symbol);
    return symbol;
  }

  [[gnu::always_inline]] bool bit(BitModel& model, bool = false) {
    const std::uint32_t zeros = model.zeroShare * (length_ >> 13);
    const bool one = value_ >= zeros;
    value_ -= one ? zeros : 0;
    length_ = one ? length_ - zeros : zeros;
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
    length_ >>= bits;
    const std::uint32_t bitsRead = value_ / length_;
    value_ -= bitsRead * length_;
    broken_ |= bitsRead >> bits != 0;
    renormalise<3>();
    return bitsRead & ((1U << bits) - 1);
  }

  /// Symbols and bits leave at least 2^9 of the length and need up to two bytes, raw bits up to three. No
  /// branch: how many it takes can't be guessed.
  template <unsigned Most = 2>
  [[gnu::always_inline]] void renormalise() {
    unsigned bytes = isBelow<24>(length_) + isBelow<16>(length_);
    if constexpr (Most == 3) bytes += isBelow<8>(length_);
    const unsigned bits = 8 * bytes;
    const std::uint64_t next = loadBigEndian(place_.at);
    value_ = value_ << bits | static_cast<std::uint32_t>(next >> (32 - bits));
    length_ <<= bits;
    place_.at += bytes;
  }

  std::uint32_t value_ = 0;
  std::uint32_t length_ = 0;
  StreamBytes::Place place_;
  StreamBytes* stream_ = nullptr;
  bool broken_ = false;
};

} // namespace Zamt::Host::Laz
