#pragma once

#include "host/clouds/laz/SymbolModel.h"
#include "host/clouds/laz/bytes.h"

#include <cstring>
#include <memory>
#include <span>

namespace Zamt::Host::Laz {

/// The bytes of a stream while it grows.
class GrowingBytes {
public:
  std::byte* begin() { return bytes_.get(); }
  std::byte* end() { return bytes_.get() + capacity_; }
  std::size_t room() const { return capacity_; }

  /// Makes it larger, keeping the bytes before `at`. Gives the place that `at` has then.
  [[gnu::noinline]] std::byte* makeRoom(std::byte* at) {
    const auto used = static_cast<std::size_t>(at - bytes_.get());
    const std::size_t larger = std::max<std::size_t>(512, 2 * capacity_);
    auto grown = std::make_unique_for_overwrite<std::byte[]>(larger);
    if (used > 0) std::memcpy(grown.get(), bytes_.get(), used);
    bytes_ = std::move(grown);
    capacity_ = larger;
    return bytes_.get() + used;
  }

private:
  std::unique_ptr<std::byte[]> bytes_;
  std::size_t capacity_ = 0;
};

/// Encodes one stream. The counterpart of RangeDecoder, call by call, so that one text of an item's coding
/// serves both: each call takes what is to be written and gives it back.
class RangeEncoder {
public:
  static constexpr bool encodes = true;
  /// What may be put out between two calls of `proceed`.
  static constexpr std::size_t stride = 124;
  template <unsigned Capacity>
  using Model = SymbolModel<Capacity, false>;

  /// `target` must outlive the encoder; what it held is overwritten.
  void start(GrowingBytes& target) {
    output_ = &target;
    if (output_->room() == 0) output_->makeRoom(output_->begin());
    at_ = output_->begin();
    limit_ = output_->end() - tailRoom;
    base_ = 0;
    length_ = 0xFFFFFFFF;
  }

  /// To be called at least every `stride` bytes: makes room. Always true.
  [[gnu::always_inline]] bool proceed() {
    if (at_ > limit_) [[unlikely]] {
      at_ = output_->makeRoom(at_);
      limit_ = output_->end() - tailRoom;
    }
    return true;
  }

  /// Ends the stream and gives its bytes, which stay until the next `start`.
  std::span<const std::byte> finish() {
    proceed();
    const bool wide = length_ > 1U << 25;
    add(wide ? 1U << 24 : 1U << 23);
    length_ = wide ? 1U << 23 : 1U << 15;
    renormalise();
    const std::size_t zeros = wide ? 3 : 2;
    for (std::size_t i = 0; i < zeros; ++i) *at_++ = std::byte{0};
    return {output_->begin(), at_};
  }

  template <unsigned Capacity>
  [[gnu::always_inline]] unsigned symbol(Model<Capacity>& model, unsigned symbol) {
    model.prepare();
    return preparedSymbol(model, symbol);
  }

  template <unsigned Capacity>
  [[gnu::always_inline]] unsigned preparedSymbol(Model<Capacity>& model, unsigned symbol) {
    const std::uint32_t step = length_ >> 15;
    const std::uint32_t low = model.starts[symbol] * step;
    const std::uint32_t high = symbol == model.last ? length_ : model.starts[symbol + 1] * step;
    add(low);
    length_ = high - low;
    renormalise();
    model.learn(symbol);
    return symbol;
  }

  [[gnu::always_inline]] bool bit(BitModel& model, bool one) {
    const std::uint32_t zeros = model.zeroShare * (length_ >> 13);
    if (one) add(zeros);
    length_ = one ? length_ - zeros : zeros;
    renormalise();
    model.learn(one);
    return one;
  }

  /// The lowest `bits` bits of `value`, the others being 0; `bits` from 1 to 32.
  [[gnu::always_inline]] std::uint32_t raw(unsigned bits, std::uint32_t value) {
    if (bits <= 19) {
      fewRaw(bits, value);
    } else {
      fewRaw(16, value & 0xFFFF);
      fewRaw(bits - 16, value >> 16);
    }
    return value;
  }

private:
  static constexpr std::size_t tailRoom = stride + 8;

  [[gnu::always_inline]] void fewRaw(unsigned bits, std::uint32_t value) {
    length_ >>= bits;
    add(value * length_);
    renormalise<3>();
  }

  [[gnu::always_inline]] void add(std::uint32_t amount) {
    base_ += amount;
    if (base_ < amount) [[unlikely]]
      carry(at_);
  }

  // The sum of all that is added stays below one, so that the carry never passes the first byte.
  [[gnu::noinline]] static void carry(std::byte* end) {
    std::byte* p = end - 1;
    for (; *p == std::byte{0xFF}; --p) *p = std::byte{0};
    *p = static_cast<std::byte>(std::to_integer<unsigned>(*p) + 1);
  }

  template <unsigned Most = 2>
  [[gnu::always_inline]] void renormalise() {
    unsigned bytes = isBelow<24>(length_) + isBelow<16>(length_);
    if constexpr (Most == 3) bytes += isBelow<8>(length_);
    storeBigEndian(at_, base_);
    at_ += bytes;
    base_ <<= 8 * bytes;
    length_ <<= 8 * bytes;
  }

  std::uint32_t base_ = 0;
  std::uint32_t length_ = 0;
  std::byte* at_ = nullptr;
  std::byte* limit_ = nullptr;
  GrowingBytes* output_ = nullptr;
};

} // namespace Zamt::Host::Laz
