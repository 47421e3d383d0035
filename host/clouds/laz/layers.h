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
    byLevel.fill(value);
    numbers.reset();
  }
  Value last() const { return last_; }
  [[gnu::always_inline]] Value code(Coder& coder, PointContext context, Value value) {
    std::uint32_t& expected = byLevel[levelOf(context)];
    expected = numbers.code(coder, expected, value, contextOfZ(context));
    return last_ = expected;
  }

private:
  Value last_ = 0;
  std::array<std::uint32_t, 8> byLevel{};
  IntegerCoder<Coder, 32, 20> numbers;
};

template <class Coder>
class ClassLayer {
public:
  using Value = std::uint8_t;
  void seed(Value value) {
    last_ = value;
    for (auto& model : models) model.reset();
  }
  Value last() const { return last_; }
  [[gnu::always_inline]] Value code(Coder& coder, PointContext context, Value value) {
    const unsigned single = placeOf(context) == 3 ? 1 : 0;
    return last_ = static_cast<Value>(coder.symbol(models[2 * (last_ & 31U) + single], value));
  }

private:
  Value last_ = 0;
  std::array<typename Coder::template Model<256>, 64> models;
};

/// The byte of a record whose bits 4 and 5 are the scanner channel, which the stream leaves out.
template <class Coder>
class FlagLayer {
public:
  using Value = std::uint8_t;
  void seed(Value value) {
    last_ = value;
    for (auto& model : models) model.reset();
  }
  Value last() const { return last_; }
  [[gnu::always_inline]] Value code(Coder& coder, PointContext context, Value value) {
    const unsigned flags = coder.symbol(models[packed(last_)], packed(value));
    return last_ = static_cast<Value>((flags & 15) | channelOf(context) << 4 | flags >> 4 << 6);
  }

private:
  static unsigned packed(unsigned flags) { return (flags & 15) | flags >> 6 << 4; }
  Value last_ = 0;
  std::array<typename Coder::template Model<64>, 64> models;
};

template <class Coder>
class IntensityLayer {
public:
  using Value = std::uint16_t;
  void seed(Value value) {
    last_ = value;
    byReturn.fill(value);
    numbers.reset();
  }
  Value last() const { return last_; }
  [[gnu::always_inline]] Value code(Coder& coder, PointContext context, Value value) {
    const unsigned place = placeOf(context);
    std::uint16_t& expected = byReturn[2 * place + timeDiffers(context)];
    return last_ = expected = static_cast<Value>(numbers.code(coder, expected, value, place));
  }

private:
  Value last_ = 0;
  std::array<std::uint16_t, 8> byReturn{};
  IntegerCoder<Coder, 16, 4> numbers;
};

template <class Coder>
class AngleLayer {
public:
  using Value = std::uint16_t;
  void seed(Value value) {
    last_ = value;
    numbers.reset();
  }
  Value last() const { return last_; }
  [[gnu::always_inline]] Value code(Coder& coder, PointContext context, Value value) {
    if (angleDiffers(context))
      last_ = static_cast<Value>(numbers.code(coder, last_, value, timeDiffers(context)));
    return last_;
  }

private:
  Value last_ = 0;
  IntegerCoder<Coder, 16, 2> numbers;
};

template <class Coder>
class UserLayer {
public:
  using Value = std::uint8_t;
  void seed(Value value) {
    last_ = value;
    for (auto& model : models) model.reset();
  }
  Value last() const { return last_; }
  [[gnu::always_inline]] Value code(Coder& coder, PointContext, Value value) {
    return last_ = static_cast<Value>(coder.symbol(models[last_ >> 2], value));
  }

private:
  Value last_ = 0;
  std::array<typename Coder::template Model<256>, 64> models;
};

template <class Coder>
class SourceLayer {
public:
  using Value = std::uint16_t;
  void seed(Value value) {
    last_ = value;
    numbers.reset();
  }
  Value last() const { return last_; }
  [[gnu::always_inline]] Value code(Coder& coder, PointContext context, Value value) {
    if (sourceDiffers(context)) last_ = static_cast<Value>(numbers.code(coder, last_, value, 0));
    return last_;
  }

private:
  Value last_ = 0;
  IntegerCoder<Coder, 16, 1> numbers;
};

template <class Coder>
class TimeLayer {
public:
  using Value = std::uint64_t;
  void seed(Value value) { times.reset(value); }
  Value last() const { return times.last(); }
  [[gnu::always_inline]] Value code(Coder& coder, PointContext context, Value value) {
    return timeDiffers(context) ? times.code(coder, value) : times.last();
  }

private:
  TimeCoder<Coder, true> times;
};

/// One extra byte.
template <class Coder>
class ExtraByteCoder {
public:
  void reset() { model.reset(); }
  [[gnu::always_inline]] void code(Coder& coder, const std::uint8_t& last, std::uint8_t& now) {
    now = static_cast<std::uint8_t>(ByteDifferences<Coder>::code(coder, model, last, now));
  }

private:
  typename Coder::template Model<256> model;
};

/// The values of a layer of the core of a point, of which each channel has its own models and last value.
template <class Coder, class Layer>
class ChannelLayer {
public:
  using Value = typename Layer::Value;

  void start(PointContext context, Value first, bool = false) {
    used = 0;
    select(channelOf(context), first);
  }

  [[gnu::always_inline]] Value code(Coder& coder, PointContext context, Value value) {
    if (channelOf(context) != current) [[unlikely]]
      select(channelOf(context), layer->last());
    return layer->code(coder, context, value);
  }

private:
  [[gnu::noinline]] void select(unsigned channel, Value last) {
    current = channel;
    if (!layers[channel]) layers[channel] = std::make_unique_for_overwrite<Layer>();
    layer = layers[channel].get();
    if ((used >> channel & 1) == 0) layer->seed(last);
    used |= 1U << channel;
  }

  std::array<std::unique_ptr<Layer>, 4> layers;
  Layer* layer = nullptr;
  unsigned used = 0; ///< One bit for each channel.
  unsigned current = 0;
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
    odd = hasOddChannels;
    used = 0;
    current = channelOf(context);
    enter(current, first);
  }

  [[gnu::always_inline]] Value code(Coder& coder, PointContext context, Value value) {
    const unsigned given = odd && !channelDiffers(context) ? 0 : channelOf(context);
    if (given != current) [[unlikely]]
      change(given);
    channel->item.code(coder, *source, value);
    *source = value;
    source = &channel->last;
    return value;
  }

private:
  struct Channel {
    Item item;
    Value last{};
  };

  void enter(unsigned given, const Value& last) {
    if (!channels[given]) channels[given] = std::make_unique_for_overwrite<Channel>();
    channel = channels[given].get();
    if ((used >> given & 1) == 0) {
      channel->item.reset();
      channel->last = last;
    }
    used |= 1U << given;
    source = &channel->last;
  }

  [[gnu::noinline]] void change(unsigned given) {
    Channel* const before = channel;
    const bool wasUsed = used >> given & 1;
    enter(given, before->last);
    if (odd && wasUsed) source = &before->last;
    current = given;
  }

  std::array<std::unique_ptr<Channel>, 4> channels;
  Channel* channel = nullptr;
  Value* source = nullptr; ///< The value that the next one is predicted from and stored to.
  unsigned used = 0;
  unsigned current = 0;
  bool odd = false;
};

} // namespace Zamt::Host::Laz
