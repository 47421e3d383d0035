#pragma once

#include "host/clouds/laz/PointContext.h"
#include "host/clouds/laz/TimeCoder.h"
#include "host/clouds/laz/itemCoders.h"

#include <array>
#include <cstdint>
#include <memory>

// What the layers behind the first one code. `code` is given the context and the value of a point (when
// decoding any) and gives its value; `seed` makes the models new, as behind a point with that value.

namespace Zamt::Host::Laz {

template <class Coder>
class ZLayer {
public:
  using Value = std::uint32_t;
  void seed(Value value) {
    last_ = value;
    byLevel_.fill(value);
    numbers_.reset();
  }
  Value last() const { return last_; }
  [[gnu::always_inline]] Value code(Coder& coder, PointContext context, Value value) {
    std::uint32_t& expected = byLevel_[levelOf(context)];
    expected = numbers_.code(coder, expected, value, contextOfZ(context));
    return last_ = expected;
  }

private:
  Value last_ = 0;
  std::array<std::uint32_t, 8> byLevel_{};
  IntegerCoder<Coder, 32, 20> numbers_;
};

template <class Coder>
class ClassLayer {
public:
  using Value = std::uint8_t;
  void seed(Value value) {
    last_ = value;
    for (auto& model : models_) model.reset();
  }
  Value last() const { return last_; }
  [[gnu::always_inline]] Value code(Coder& coder, PointContext context, Value value) {
    const unsigned single = placeOf(context) == 3 ? 1 : 0;
    return last_ = static_cast<Value>(coder.symbol(models_[2 * (last_ & 31U) + single], value));
  }

private:
  Value last_ = 0;
  std::array<typename Coder::template Model<256>, 64> models_;
};

/// The byte of a record whose bits 4 and 5 are the scanner channel, which the stream leaves out.
template <class Coder>
class FlagLayer {
public:
  using Value = std::uint8_t;
  void seed(Value value) {
    last_ = value;
    for (auto& model : models_) model.reset();
  }
  Value last() const { return last_; }
  [[gnu::always_inline]] Value code(Coder& coder, PointContext context, Value value) {
    const unsigned flags = coder.symbol(models_[packed(last_)], packed(value));
    return last_ = static_cast<Value>((flags & 15) | channelOf(context) << 4 | flags >> 4 << 6);
  }

private:
  static unsigned packed(unsigned flags) { return (flags & 15) | flags >> 6 << 4; }
  Value last_ = 0;
  std::array<typename Coder::template Model<64>, 64> models_;
};

template <class Coder>
class IntensityLayer {
public:
  using Value = std::uint16_t;
  void seed(Value value) {
    last_ = value;
    byReturn_.fill(value);
    numbers_.reset();
  }
  Value last() const { return last_; }
  [[gnu::always_inline]] Value code(Coder& coder, PointContext context, Value value) {
    const unsigned place = placeOf(context);
    std::uint16_t& expected = byReturn_[2 * place + timeDiffers(context)];
    return last_ = expected = static_cast<Value>(numbers_.code(coder, expected, value, place));
  }

private:
  Value last_ = 0;
  std::array<std::uint16_t, 8> byReturn_{};
  IntegerCoder<Coder, 16, 4> numbers_;
};

template <class Coder>
class AngleLayer {
public:
  using Value = std::uint16_t;
  void seed(Value value) {
    last_ = value;
    numbers_.reset();
  }
  Value last() const { return last_; }
  [[gnu::always_inline]] Value code(Coder& coder, PointContext context, Value value) {
    if (angleDiffers(context))
      last_ = static_cast<Value>(numbers_.code(coder, last_, value, timeDiffers(context)));
    return last_;
  }

private:
  Value last_ = 0;
  IntegerCoder<Coder, 16, 2> numbers_;
};

template <class Coder>
class UserLayer {
public:
  using Value = std::uint8_t;
  void seed(Value value) {
    last_ = value;
    for (auto& model : models_) model.reset();
  }
  Value last() const { return last_; }
  [[gnu::always_inline]] Value code(Coder& coder, PointContext, Value value) {
    return last_ = static_cast<Value>(coder.symbol(models_[last_ >> 2], value));
  }

private:
  Value last_ = 0;
  std::array<typename Coder::template Model<256>, 64> models_;
};

template <class Coder>
class SourceLayer {
public:
  using Value = std::uint16_t;
  void seed(Value value) {
    last_ = value;
    numbers_.reset();
  }
  Value last() const { return last_; }
  [[gnu::always_inline]] Value code(Coder& coder, PointContext context, Value value) {
    if (sourceDiffers(context)) last_ = static_cast<Value>(numbers_.code(coder, last_, value, 0));
    return last_;
  }

private:
  Value last_ = 0;
  IntegerCoder<Coder, 16, 1> numbers_;
};

template <class Coder>
class TimeLayer {
public:
  using Value = std::uint64_t;
  void seed(Value value) { times_.reset(value); }
  Value last() const { return times_.last(); }
  [[gnu::always_inline]] Value code(Coder& coder, PointContext context, Value value) {
    return timeDiffers(context) ? times_.code(coder, value) : times_.last();
  }

private:
  TimeCoder<Coder, true> times_;
};

/// One extra byte.
template <class Coder>
class ExtraByteCoder {
public:
  void reset() { model_.reset(); }
  [[gnu::always_inline]] void code(Coder& coder, const std::uint8_t& last, std::uint8_t& now) {
    now = static_cast<std::uint8_t>(ByteDifferences<Coder>::code(coder, model_, last, now));
  }

private:
  typename Coder::template Model<256> model_;
};

/// The values of a layer of the core of a point, of which each channel has its own models and last value.
template <class Coder, class Layer>
class ChannelLayer {
public:
  using Value = typename Layer::Value;

  void start(PointContext context, Value first, bool = false) {
    used_ = 0;
    select(channelOf(context), first);
  }

  [[gnu::always_inline]] Value code(Coder& coder, PointContext context, Value value) {
    if (channelOf(context) != current_) [[unlikely]]
      select(channelOf(context), layer_->last());
    return layer_->code(coder, context, value);
  }

private:
  [[gnu::noinline]] void select(unsigned channel, Value last) {
    current_ = channel;
    if (!layers_[channel]) layers_[channel] = std::make_unique_for_overwrite<Layer>();
    layer_ = layers_[channel].get();
    if ((used_ >> channel & 1) == 0) layer_->seed(last);
    used_ |= 1U << channel;
  }

  std::array<std::unique_ptr<Layer>, 4> layers_;
  Layer* layer_ = nullptr;
  unsigned used_ = 0; ///< One bit for each channel.
  unsigned current_ = 0;
};

/// The values of a layer of an item behind the core. In items up to version 3 only points whose channel
/// differs from that of the point before say which it is, all others are taken for channel 0; and where a
/// channel that is used already comes back, its models are used with the last value of the channel before,
/// which the new value then replaces. Files are written so.
template <class Coder, class Item, class Value_>
class ItemLayer {
public:
  using Value = Value_;

  void start(PointContext context, const Value& first, bool hasOddChannels) {
    odd_ = hasOddChannels;
    used_ = 0;
    current_ = channelOf(context);
    enter(current_, first);
  }

  [[gnu::always_inline]] Value code(Coder& coder, PointContext context, Value value) {
    const unsigned given = odd_ && !channelDiffers(context) ? 0 : channelOf(context);
    if (given != current_) [[unlikely]]
      change(given);
    channel_->item.code(coder, *source_, value);
    *source_ = value;
    source_ = &channel_->last;
    return value;
  }

private:
  struct Channel {
    Item item;
    Value last{};
  };

  void enter(unsigned given, const Value& last) {
    if (!channels_[given]) channels_[given] = std::make_unique_for_overwrite<Channel>();
    channel_ = channels_[given].get();
    if ((used_ >> given & 1) == 0) {
      channel_->item.reset();
      channel_->last = last;
    }
    used_ |= 1U << given;
    source_ = &channel_->last;
  }

  [[gnu::noinline]] void change(unsigned given) {
    Channel* const before = channel_;
    const bool wasUsed = used_ >> given & 1;
    enter(given, before->last);
    if (odd_ && wasUsed) source_ = &before->last;
    current_ = given;
  }

  std::array<std::unique_ptr<Channel>, 4> channels_;
  Channel* channel_ = nullptr;
  Value* source_ = nullptr; ///< The value that the next one is predicted from and stored to.
  unsigned used_ = 0;
  unsigned current_ = 0;
  bool odd_ = false;
};

} // namespace Zamt::Host::Laz
