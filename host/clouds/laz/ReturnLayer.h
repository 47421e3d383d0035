#pragma once

#include "host/clouds/laz/IntegerCoder.h"
#include "host/clouds/laz/LazColumn.h"
#include "host/clouds/laz/MovingMedian.h"
#include "host/clouds/laz/PointContext.h"
#include "host/clouds/laz/bytes.h"
#include "host/clouds/laz/returnTables.h"

#include <array>
#include <memory>
#include <span>

namespace Zamt::Host::Laz {

/// The first layer: channel, returns, X and Y, and what else of a point differs from the last one of its
/// channel. All other layers take their contexts from it.
template <class Coder>
class ReturnLayer {
public:
  /// What is needed of a point; of decoded ones the last three stay 0.
  struct Point {
    std::uint8_t returns = 0;
    std::uint8_t channel = 0;
    std::uint32_t x = 0;
    std::uint32_t y = 0;
    std::uint16_t angle = 0;
    std::uint16_t source = 0;
    std::uint64_t time = 0;
  };

  /// Starts a chunk with its first point, which is not coded. Gives its context.
  PointContext start(const Point& first) {
    used_ = 0;
    current_ = first.channel & 3U;
    select(current_, first);
    const unsigned place = table[first.returns].place;
    const unsigned level = table[first.returns].level;
    return static_cast<PointContext>(place | level << 3 | current_ << 6 | 1U << 15);
  }

  /// Codes one point and gives its context. X and Y are left out, without losing step, unless `WithXy`.
  template <bool WithXy>
  [[gnu::always_inline]] PointContext code(Coder& coder, Point& now) {
    Channel& before = *channels_[current_];
    unsigned wanted = 0;
    if constexpr (Coder::encodes) wanted = differences(now);
    const unsigned changed = coder.symbol(before.changes[before.returnPlace()], wanted);
    if (changed & ChannelDiffers) {
      const unsigned turn = coder.symbol(before.turns, (now.channel - current_ - 1U) & 3);
      select((current_ + 1 + turn) & 3, before.last);
    }
    Channel& channel = *channels_[current_];
    const unsigned newTime = changed & TimeDiffers ? 1 : 0;
    const unsigned returns = codeReturns(coder, channel, changed, now.returns);
    const ReturnContext meaning = table[returns];
    channel.timeDiffered = newTime;
    channel.last.returns = static_cast<std::uint8_t>(returns);
    const unsigned median = 2U * meaning.map + newTime;
    codeAxis<WithXy>(coder, channel.xs, channel.medianX[median], meaning.single, channel.last.x, now.x);
    const unsigned kx = channel.xs.k();
    codeAxis<WithXy>(coder, channel.ys, channel.medianY[median], contextOfY(meaning.single, kx),
                     channel.last.y, now.y);
    if constexpr (Coder::encodes) {
      channel.last = now;
    } else {
      now = channel.last;
    }
    return static_cast<PointContext>(
        unsigned{meaning.place} | newTime << 2 | unsigned{meaning.level} << 3 | current_ << 6 |
        contextOfZ(meaning.single, kx, channel.ys.k()) << 8 | (changed & AngleDiffers ? 1U << 13 : 0U) |
        (changed & SourceDiffers ? 1U << 14 : 0U) | (changed & ChannelDiffers ? 1U << 15 : 0U));
  }

private:
  enum Difference : unsigned {
    ChannelDiffers = 64,
    SourceDiffers = 32,
    TimeDiffers = 16,
    AngleDiffers = 8,
    CountDiffers = 4
  };
  static constexpr auto table = returnsOfFourBits();

  struct Channel {
    Point last;
    unsigned timeDiffered = 0;
    std::array<typename Coder::template Model<128>, 8> changes;
    typename Coder::template Model<3> turns;
    std::array<typename Coder::template Model<16>, 16> counts;
    std::array<typename Coder::template Model<16>, 16> numbers;
    typename Coder::template Model<13> shifts;
    IntegerCoder<Coder, 32, 2> xs;
    IntegerCoder<Coder, 32, 22> ys;
    std::array<MovingMedian, 12> medianX;
    std::array<MovingMedian, 12> medianY;

    void seed(const Point& point) {
      last = point;
      timeDiffered = 0;
      for (auto& model : changes) model.reset();
      turns.reset();
      for (auto& model : counts) model.reset();
      for (auto& model : numbers) model.reset();
      shifts.reset();
      xs.reset();
      ys.reset();
      medianX = {};
      medianY = {};
    }

    /// Here the first return counts 1 and the last one 2, the other way round than in `place`.
    unsigned returnPlace() const {
      const unsigned place = table[last.returns].place;
      return place >> 1 | (place & 1) << 1 | timeDiffered << 2;
    }
  };

  /// Makes a channel the current one; one that is not used yet starts with `point`.
  [[gnu::noinline]] void select(unsigned channel, Point point) {
    current_ = channel;
    if (used_ >> channel & 1) return;
    used_ |= 1U << channel;
    if (!channels_[channel]) channels_[channel] = std::make_unique_for_overwrite<Channel>();
    channels_[channel]->seed(point);
    channels_[channel]->last.channel = static_cast<std::uint8_t>(channel);
  }

  unsigned differences(const Point& now) const {
    const bool isUsed = used_ >> now.channel & 1;
    const Point& last = channels_[isUsed ? now.channel : current_]->last;
    const unsigned turned = (now.returns - last.returns) & 15U;
    const unsigned number = turned == 0 ? 0 : turned == 1 ? 1 : turned == 15 ? 2 : 3;
    return number | (now.channel != current_ ? unsigned{ChannelDiffers} : 0U) |
           (now.source != last.source ? unsigned{SourceDiffers} : 0U) |
           (now.time != last.time ? unsigned{TimeDiffers} : 0U) |
           (now.angle != last.angle ? unsigned{AngleDiffers} : 0U) |
           (now.returns >> 4 != last.returns >> 4 ? unsigned{CountDiffers} : 0U);
  }

  [[gnu::always_inline]] static unsigned codeReturns(Coder& coder, Channel& channel, unsigned changed,
                                                     unsigned now) {
    const unsigned lastNumber = channel.last.returns & 15U;
    unsigned count = channel.last.returns >> 4U;
    if (changed & CountDiffers) count = coder.symbol(channel.counts[count], now >> 4);
    unsigned number = lastNumber;
    if ((changed & 3) == 1) number = (lastNumber + 1) & 15;
    if ((changed & 3) == 2) number = (lastNumber + 15) & 15;
    if ((changed & 3) == 3) {
      if (changed & TimeDiffers)
        number = coder.symbol(channel.numbers[lastNumber], now & 15);
      else
        number = (lastNumber + 2 + coder.symbol(channel.shifts, (now - lastNumber - 2) & 15)) & 15;
    }
    return count << 4 | number;
  }

  template <bool WithXy, class Numbers>
  [[gnu::always_inline]] static void codeAxis(Coder& coder, Numbers& numbers, MovingMedian& median,
                                              unsigned context, std::uint32_t& last, std::uint32_t now) {
    if constexpr (WithXy) {
      const std::uint32_t d =
          numbers.code(coder, static_cast<std::uint32_t>(median.median()), now - last, context);
      median.push(static_cast<std::int32_t>(d));
      last += d;
    } else {
      numbers.code(coder, 0, 0, context);
    }
  }

  std::array<std::unique_ptr<Channel>, 4> channels_;
  unsigned used_ = 0; ///< One bit for each channel.
  unsigned current_ = 0;
};

} // namespace Zamt::Host::Laz
